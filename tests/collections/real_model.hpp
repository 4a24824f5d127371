// How the numbers of the plain model stand for elements of the real one: classes, properties and UUIDs.
// Thread rule: the model's thread.
#pragma once

#include <set>
#include <string>

#include "plain_model.hpp"
#include "plinth/ReferenceCollection.hpp"

namespace collections_test {

/// A view that shows the members of one kind.
struct View {
  Feature parent;
  char16_t const* name;
  Kind kind;
};
inline constexpr View views[] = {{Feature::CONTENTS, u"SubCategories", Kind::CATEGORY},
                                 {Feature::CONTENTS, u"Params", Kind::PARAM},
                                 {Feature::TAGGED, u"TaggedParams", Kind::PARAM},
                                 {Feature::MEMBERS, u"MemberParams", Kind::PARAM}};
/// Members of the class of the view; a dead one is of no class.
bool isShown(PlainModel const& plain, int id, View const& view);

template <class E>
constexpr std::size_t at(E value) {
  return static_cast<std::size_t>(value);
}

char16_t const* nameOf(Feature feature);
plinth::meta::Class const& classOf(Kind kind);
plinth::meta::Property propertyOf(plinth::ModelElement const& element, char16_t const* name);

boost::uuids::uuid uuidOf(int id);
int idOf(boost::uuids::uuid const& uuid);
/// ~id for a proxy, -1 for an empty handle.
int idOf(plinth::ModelElement const& element);

plinth::ModelElement createElement(plinth::Model const& model, Kind kind, int id);
/// Sets Key or Id, by reflection; does nothing for a kind that has neither.
void setKey(plinth::ModelElement const& element, Kind kind, std::u16string const& key);
bool hasKey(Kind kind);

/// The members in the order that PlainModel::contents gives; the proxies of maps and sets apart.
Numbers numbersIn(plinth::ReferenceCollection const* collection, Feature feature, std::set<int>* proxies = nullptr);

inline std::string text(int number) { return std::to_string(number); }
inline std::string text(std::string const& value) { return value; }
inline std::string text(std::u16string const& value) { return std::string(value.begin(), value.end()); }
template <class C>
std::string text(C const& values) {
  std::string all = "[";
  for (auto const& value : values) all += text(value) + ' ';
  return all + "]";
}

}  // namespace collections_test
