// Builders gather the property values of an element that doesn't exist yet, its contained children's builders included,
// and make the whole tree in one step. Ownership: a builder owns its child builders; the model keeps what was built.
// Thread rule: the thread of the model that it builds in.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "plinth/Messages.hpp"
#include "plinth/Model.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth {

/// Runs a tree of builders: remembers which builder has made which element, so that each makes one at most, and makes
/// children from a work list, so that the depth of a tree costs no stack.
class TESSEL_EXPORT Orchestrator {
 public:
  /// Whether the builders are read after the run, or end with it: then elements take over what builders hold.
  enum class Builders { KEPT, SPENT };

  /// Opens a transaction, which ends with the orchestrator. Raises CannotCreateWithoutModel for a builder that has no
  /// model, and CannotAddNonExistentObject for none.
  explicit Orchestrator(ModelElementBuilder* root, Builders builders = Builders::KEPT);
  Orchestrator(Orchestrator const&) = delete;
  Orchestrator& operator=(Orchestrator const&) = delete;
  /// Without a commit, what was built is taken back.
  ~Orchestrator();

  /// Takes another builder in, in the root's model; one that another orchestrator has leaves it. Raises
  /// CannotAddNonExistentObject for none.
  void addBuilder(ModelElementBuilder* builder);
  /// What that builder has made, or an empty handle.
  ModelElement getCreatedElement(ModelElementBuilder const* builder) const;
  /// Makes the root's element and everything below it, unless that has been done. The reference holds as long as the
  /// orchestrator. Raises what the builder's create raises.
  ModelElement const& run(boost::uuids::uuid const& uuid) { return run(*m_root, uuid); }
  /// Keeps what was built. Gives the root's element; an empty handle where none has been made. Raises
  /// TransactionNotInnermost while an inner transaction is open, TransactionEnded after the first time.
  ModelElement commit();
  bool spendsBuilders() const noexcept { return m_spendsBuilders; }

  /// The same for another builder, with what is below it.
  ModelElement const& run(ModelElementBuilder& top, boost::uuids::uuid const& uuid);
  /// Lets go of a builder that it has.
  void removeBuilder(ModelElementBuilder& builder) noexcept;
  /// An element that no model takes in, as a proxy is none.
  static ModelElement makeProxy(ModelElementBuilder& builder, boost::uuids::uuid const& uuid);
  /// See plinth::takeDown.
  static void takeDown(std::unique_ptr<ModelElementBuilder> builder) noexcept;

 private:
  struct Frame;

  ModelElementBuilder* m_root;
  ModelElementBuilder* m_builders = nullptr;  ///< the one added last; each knows the one before it
  Transaction m_transaction;
  bool m_spendsBuilders;
};

/// The children that a builder is to make; see CascadeSteps.hpp.
class CascadeSteps;

class TESSEL_EXPORT ModelElementBuilder {
 public:
  using Orchestrator = plinth::Orchestrator;

  ModelElementBuilder(Model const& model, unsigned long bits) noexcept : m_model(model), m_bits(bits) {}
  explicit ModelElementBuilder(unsigned long bits) noexcept : m_bits(bits) {}
  ModelElementBuilder(ModelElementBuilder const&) = delete;
  ModelElementBuilder& operator=(ModelElementBuilder const&) = delete;
  virtual ~ModelElementBuilder();

  /// Makes the element and, from child builders, all it contains, in one transaction. A nil UUID asks for a new one.
  /// Raises CannotCreateWithoutModel, and whatever the setters and collections raise; then nothing was made. Linear in
  /// the tree. Under an orchestrator the tree is part of what that one builds, and a second call gives the same
  /// element.
  ModelElement create(boost::uuids::uuid const& uuid = {});
  /// Another model than before takes the builder out of an orchestrator, which builds in one model.
  void setModel(Model const& model) {
    if (model != m_model) leaveOrchestrator();
    m_model = model;
  }
  Model const& model() const noexcept { return m_model; }

  virtual meta::Class const& getMetaClass() const = 0;
  /// Gives the property this value, or adds the value to a many-valued one. Raises CannotCastIncompatibleTypes for a
  /// value of another type and NoSuchProperty for a property that the class doesn't have or that can't be given by
  /// value.
  virtual void setOrAdd(meta::Property const& property, Value const& value);
  /// The same with a builder for a contained child. Raises NoSuchProperty for no containment of the class, and
  /// CannotAddIncompatibleTypes for a child whose class doesn't fit.
  virtual void setOrAdd(meta::Property const& property, std::unique_ptr<ModelElementBuilder> child);

  /// False for an index that the class doesn't have.
  bool isSet(unsigned long index) const noexcept { return index < 64 && (m_setMask >> index & 1U) != 0; }
  /// Complete with boost/dynamic_bitset.hpp.
  BitSet setMask() const;

 protected:
  /// Makes the element itself, with its attributes and references; its children come from the cascade. `deferred`
  /// leaves it unannounced, as a proxy is.
  virtual ModelElement doCreate(bool deferred, boost::uuids::uuid const& uuid) = 0;
  /// The children to make, in the order in which they are made, and room for them in `parent`.
  virtual void cascadeCreation(ModelElementImpl& parent, CascadeSteps& steps);
  /// Puts a child that has been made into its containment.
  virtual void attach(ModelElementImpl& parent, meta::PropertyImpl& property, ModelElement const& child);
  std::uint64_t mask() const noexcept { return m_setMask; }
  void mark(unsigned long index) noexcept { m_setMask |= std::uint64_t{1} << index; }
  void unmark(unsigned long index) noexcept { m_setMask &= ~(std::uint64_t{1} << index); }
  Orchestrator* orchestrator() const noexcept { return m_orchestrator; }

 private:
  friend class plinth::Orchestrator;

  /// What it has made, or makes now, without its children.
  ModelElement const& make(boost::uuids::uuid const& uuid);
  void leaveOrchestrator() noexcept {
    if (m_orchestrator != nullptr) m_orchestrator->removeBuilder(*this);
  }

  Model m_model;
  Orchestrator* m_orchestrator = nullptr;
  ModelElementBuilder* m_next = nullptr;      ///< in the list of m_orchestrator, or of those that wait for their end
  ModelElementBuilder* m_previous = nullptr;  ///< in the list of m_orchestrator
  ModelElement m_created;                     ///< what it made under m_orchestrator
  std::uint64_t m_setMask = 0;
  unsigned long m_bits;
};

/// Destroys builders without recursing on the depth of their trees. Allocates nothing.
TESSEL_EXPORT void takeDown(std::unique_ptr<ModelElementBuilder> builder) noexcept;

/// A builder whose element fits class X; what `createInto...` takes. Raises CannotAddIncompatibleTypes for another
/// class, and CannotAddNonExistentObject for no builder.
template <class X>
class BuilderWrapper {
 public:
  /// From an owning pointer to any builder class, which is meant to pass as it is.
  template <class B, class = std::enable_if_t<std::is_base_of_v<ModelElementBuilder, B>>>
  // NOLINTNEXTLINE(google-explicit-constructor)
  BuilderWrapper(std::unique_ptr<B> builder) : m_builder(std::move(builder)) {
    if (m_builder == nullptr) reportException(messages::CannotAddNonExistentObject());
    auto const& actual = *m_builder->getMetaClass().impl();
    auto const& expected = *X::metaClass().impl();
    if (!actual.conformsTo(expected)) {
      reportException(messages::CannotAddIncompatibleTypes(expected.getQualifiedName(), actual.getQualifiedName()));
    }
  }
  ModelElementBuilder& builder() const noexcept { return *m_builder; }

 private:
  std::unique_ptr<ModelElementBuilder> m_builder;
};

}  // namespace plinth
