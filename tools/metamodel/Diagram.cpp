#include "Diagram.hpp"

#include <algorithm>
#include <boost/optional.hpp>
#include <groundwork/Unicode.hpp>
#include <utility>

#include "Tree.hpp"

namespace metamodel {
namespace {

constexpr char const* HEAD =
    R"(  graph [rankdir=LR, ranksep=0.9, nodesep=0.28, pad=0.3, fontname="Helvetica", fontsize=11, labelloc=t]
  node [shape=plain, fontname="Helvetica", fontsize=11]
  edge [fontname="Helvetica", fontsize=9, arrowsize=0.9]
)";
constexpr char const* LEGEND =
    "hollow arrow: superclass &#8195; diamond: contains &#8195; dashed: refers to &#8195; /: derived &#8195; grey: in "
    "another package";
constexpr char const* SUPERCLASS_STYLE = R"([dir=back, arrowtail=onormal, color="#7f6000", penwidth=1.4, weight=4])";
constexpr char const* CONTAINMENT_STYLE = R"([dir=both, arrowtail=diamond, arrowhead=vee, color="#1f3864"])";
constexpr char const* REFERENCE_STYLE = R"([arrowhead=vee, style=dashed, color="#548235"])";
constexpr char const* OPPOSITE_STYLE = R"([dir=both, arrowtail=vee, arrowhead=vee, style=dashed, color="#548235"])";
constexpr char const* CLASS_COLOUR = "#dbe7f5";
constexpr char const* ABSTRACT_COLOUR = "#eef2f7";
constexpr char const* VALUE_COLOUR = "#e6f2e1";
constexpr char const* ENUM_COLOUR = "#fdf1d6";

std::string escaped(std::string const& text) {
  std::string result;
  for (char const c : text) {
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else if (c == '"') {
      result += "&quot;";
    } else {
      result += c;
    }
  }
  return result;
}

std::string inQuotes(std::string const& text) { return '"' + text + '"'; }
std::string nodeOf(meta::TypeImpl const& type) { return inQuotes(type.narrowName()); }

class Drawing {
 public:
  Drawing(meta::PackageImpl const& package, std::ostream& out) : m_package(package), m_out(out) {}
  void draw();

 private:
  void drawClass(meta::ClassImpl const& metaClass);
  void drawDataType(meta::DataTypeImpl const& type);
  void drawEnum(meta::EnumImpl const& type);
  void openBox(meta::TypeImpl const& type, std::string const& kind, std::string const& title, char const* colour);
  void closeBox() { m_out << "</TABLE>>]\n"; }
  void row(std::string const& port, std::string const& left, std::string const& right);
  void propertyRows(meta::TypeImpl const& type);
  void drawSuperclass(meta::ClassImpl const& metaClass);
  void drawLink(meta::PropertyImpl const& property);
  void drawForeign();
  template <class T>
  void lineUp(std::vector<T const*> const& types);
  /// Notes a type of another package, which gets a box of its own.
  void refer(meta::TypeImpl const& type);

  meta::PackageImpl const& m_package;
  std::ostream& m_out;
  std::vector<meta::TypeImpl const*> m_foreign;
};

bool isLink(meta::PropertyImpl const& property) {
  return dynamic_cast<meta::ClassImpl const*>(property.type()) != nullptr;
}

/// The type by its simple name: the boxes and the arrows tell where it lies.
std::string briefShape(meta::PropertyImpl const& property) {
  return shapeText(property, property.type()->owningPackage());
}

void Drawing::draw() {
  m_out << "digraph " << inQuotes(qualifiedName(m_package)) << " {\n"
        << HEAD << R"(  label=<<FONT POINT-SIZE="20">)" << qualifiedName(m_package) << "</FONT><BR/><BR/>" << LEGEND
        << "<BR/>>\n";
  auto const classes = typesOf<meta::ClassImpl>(m_package);
  for (auto const* metaClass : classes) drawClass(*metaClass);
  auto const dataTypes = typesOf<meta::DataTypeImpl>(m_package);
  auto const enums = typesOf<meta::EnumImpl>(m_package);
  for (auto const* type : dataTypes) drawDataType(*type);
  for (auto const* type : enums) drawEnum(*type);
  lineUp(dataTypes);
  lineUp(enums);
  for (auto const* metaClass : classes) {
    drawSuperclass(*metaClass);
    for (auto const* property : metaClass->ownProperties()) {
      if (isLink(*property)) drawLink(*property);
    }
  }
  drawForeign();
  m_out << "}\n";
}

void Drawing::openBox(meta::TypeImpl const& type, std::string const& kind, std::string const& title,
                      char const* colour) {
  m_out << "  " << nodeOf(type)
        << R"( [label=<<TABLE BORDER="1" CELLBORDER="0" CELLSPACING="0" CELLPADDING="3" COLOR="#44546a">)"
        << R"(<TR><TD COLSPAN="2" PORT="title" BGCOLOR=")" << colour << "\">";
  if (!kind.empty()) m_out << R"(<FONT POINT-SIZE="9">)" << kind << "</FONT><BR/>";
  m_out << title << "</TD></TR>";
}

void Drawing::row(std::string const& port, std::string const& left, std::string const& right) {
  m_out << R"(<TR><TD ALIGN="LEFT">)" << left << R"(</TD><TD ALIGN="LEFT")"
        << (port.empty() ? "" : " PORT=" + inQuotes(port)) << ">" << right << "</TD></TR>";
}

void Drawing::propertyRows(meta::TypeImpl const& type) {
  for (auto const* property : type.ownProperties()) {
    std::string shape = escaped(briefShape(*property));
    if (property->defaultValue()) shape += " = " + escaped(inQuotes(groundwork::toUtf8(*property->defaultValue())));
    std::string const label = property->isDerived() ? "/ " + name(*property) : name(*property);
    row(name(*property), escaped(label), shape);
  }
}

void Drawing::drawClass(meta::ClassImpl const& metaClass) {
  bool const isAbstract = metaClass.isAbstract();
  std::string const title = isAbstract ? "<B><I>" + name(metaClass) + "</I></B>" : "<B>" + name(metaClass) + "</B>";
  openBox(metaClass, isAbstract ? "abstract" : "", title, isAbstract ? ABSTRACT_COLOUR : CLASS_COLOUR);
  propertyRows(metaClass);
  closeBox();
}

void Drawing::drawDataType(meta::DataTypeImpl const& type) {
  openBox(type, "datatype", "<B>" + name(type) + "</B>", VALUE_COLOUR);
  propertyRows(type);
  for (auto const* operation : type.ownOperations()) {
    row("", name(*operation) + "()", escaped(nameFrom(operation->type()->owningPackage(), *operation->type())));
  }
  closeBox();
}

void Drawing::drawEnum(meta::EnumImpl const& type) {
  openBox(type, "enumeration", "<B>" + name(type) + "</B>", ENUM_COLOUR);
  for (auto const* literal : type.getLiterals()) row("", name(*literal), std::to_string(literal->value()));
  closeBox();
}

void Drawing::drawSuperclass(meta::ClassImpl const& metaClass) {
  auto const* const superclass = metaClass.superclass();
  if (superclass == nullptr || superclass == plinth::ModelElement::metaClass().impl()) return;
  refer(*superclass);
  // Drawn from above to below, so that superclasses stand first.
  m_out << "  " << nodeOf(*superclass) << " -> " << nodeOf(metaClass) << " " << SUPERCLASS_STYLE << "\n";
}

void Drawing::drawLink(meta::PropertyImpl const& property) {
  if (property.isDerived()) return;  // a view of a link that is drawn
  std::string const from = nodeOf(*property.owningType()) + ":" + inQuotes(name(property)) + ":e";
  if (auto const* const opposite = property.opposite()) {
    // One line for both ends, drawn from the many-valued one or else the first by name.
    auto const rank = [](auto const& end) { return std::make_pair(!end.isMany(), end.qualifiedName()); };
    if (rank(*opposite) < rank(property)) return;
    m_out << "  " << from << " -> " << nodeOf(*opposite->owningType()) << ":" << inQuotes(name(*opposite)) << " "
          << OPPOSITE_STYLE << "\n";
    return;
  }
  refer(*property.type());
  m_out << "  " << from << " -> " << nodeOf(*property.type()) << ":title "
        << (property.isComposite() ? CONTAINMENT_STYLE : REFERENCE_STYLE) << "\n";
}

/// Types that no line leads to stand side by side instead of in a column.
template <class T>
void Drawing::lineUp(std::vector<T const*> const& types) {
  for (std::size_t i = 1; i < types.size(); ++i) {
    m_out << "  " << nodeOf(*types[i - 1]) << " -> " << nodeOf(*types[i]) << " [style=invis]\n";
  }
}

void Drawing::refer(meta::TypeImpl const& type) {
  if (type.owningPackage() == &m_package) return;
  if (std::find(m_foreign.begin(), m_foreign.end(), &type) == m_foreign.end()) m_foreign.push_back(&type);
}

void Drawing::drawForeign() {
  for (auto const* type : m_foreign) {
    std::string const package = type->owningPackage() == nullptr ? "plinth" : qualifiedName(*type->owningPackage());
    m_out << "  " << nodeOf(*type)
          << R"( [label=<<TABLE BORDER="1" CELLBORDER="0" CELLSPACING="0" CELLPADDING="3" COLOR="#a6a6a6">)"
          << R"(<TR><TD PORT="title"><FONT POINT-SIZE="8" COLOR="#7f7f7f">)" << package << "</FONT><BR/>" << name(*type)
          << "</TD></TR></TABLE>>]\n";
  }
}

}  // namespace

void printDiagram(meta::PackageImpl const& package, std::ostream& out) { Drawing(package, out).draw(); }

}  // namespace metamodel
