// The root of all model elements: the handle and the implementation with the services and the overridable operations
// that the generated classes use. Ownership: a live element is held by its model; a handle keeps the object, not its
// life. Thread rule: the model's thread.
#pragma once

#include <boost/intrusive/unordered_set_hook.hpp>
#include <boost/optional.hpp>
#include <functional>
#include <type_traits>
#include <vector>

#include "plinth/Handle.hpp"
#include "plinth/ProxyId.hpp"

namespace plinth {

namespace query {
class Constrainables;
}

/// Tags of reflective access, compared by address.
class TESSEL_EXPORT ReflectionPrivateTag {
 public:
  static ReflectionPrivateTag const PUBLIC_ACCESS;     ///< resolves proxies
  static ReflectionPrivateTag const IN_MEMORY_ONLY;    ///< looks at what is in memory
  static ReflectionPrivateTag const NO_PROXY_RESOLVE;  ///< leaves proxies as they are

  ReflectionPrivateTag() = default;
  ReflectionPrivateTag(ReflectionPrivateTag const&) = delete;
  ReflectionPrivateTag& operator=(ReflectionPrivateTag const&) = delete;
  bool resolvesProxies() const noexcept { return this == &PUBLIC_ACCESS; }
};

/// Handle of any element. Copies share the element; comparison is by identity.
class TESSEL_EXPORT ModelElement : public Handle {
 public:
  using Impl = ModelElementImpl;
  using Builder = ModelElementBuilder;
  using Constrainables = query::Constrainables;

  ModelElement() noexcept = default;
  explicit ModelElement(ModelElementImpl* impl) noexcept;
  ModelElement(ModelElementImpl* impl, Adopt adopt) noexcept;

  ModelElementImpl* impl() const noexcept;
  ModelElementImpl* operator->() const noexcept { return impl(); }
  ModelElementImpl& operator*() const noexcept { return *impl(); }

  static meta::Class const& metaClass();
};

class TESSEL_EXPORT ModelElementImpl : public ElementImpl {
 public:
  using ReflectionPrivateTag = plinth::ReflectionPrivateTag;
  using Changes = plinth::Changes;
  using Storage = plinth::Storage;

  /// The position that stands for none in `basicSetContainer`.
  static constexpr unsigned long NO_INDEX = ~0UL;

  ~ModelElementImpl() override;

  Model getModel() const noexcept;
  ModelImpl& model() const noexcept { return *m_model; }
  virtual meta::Class const& getMetaClass() const = 0;
  ModelElement This() const noexcept;

  // Reflection. Each raises NoSuchProperty for a property that the element's class doesn't have.
  virtual bool hasPropertyValue(meta::Property const& property, ReflectionPrivateTag const& tag) const;
  virtual Value getPropertyValue(meta::Property const& property, ReflectionPrivateTag const& tag) const;
  /// Raises as the property's setter does, and CannotCastIncompatibleTypes for a value of another type.
  virtual void setPropertyValue(meta::Property const& property, Value const& value, ReflectionPrivateTag const& tag);
  bool hasPropertyValue(meta::Property const& property) const;
  Value getPropertyValue(meta::Property const& property) const;
  void setPropertyValue(meta::Property const& property, Value const& value);
  /// Calls an operation of the class. Raises NoSuchProperty for one that it doesn't have.
  virtual Value invoke(meta::Operation const& operation, std::vector<Value> const& arguments,
                       ReflectionPrivateTag const& tag);
  /// An empty handle for an index that the class doesn't have. O(length of the base chain).
  virtual meta::Property getPropertyByIndex(unsigned long index) const;
  /// The element's UUID as text.
  virtual std::u16string identifier() const;

  // Life.
  /// Ends the life of this element and of all it contains; detaches what points at it. Memory stays until the last
  /// handle goes. Linear in what is destroyed; does not recurse on depth. Raises CannotModifyProxy for a proxy.
  void destroy();
  /// Teardown of a contained child; `detach` is false where the caller clears its own link.
  /// Raises CannotModifyOutsideTransaction. What the other flags mean is up to overriders: they are handed on as given.
  void destroyRecursively(bool flag1, bool detach, bool flag2);
  /// The step of teardown that sends the contained children into theirs and empties the containments.
  virtual void doDestroy(bool flag1, bool flag2);
  /// Called before doDestroy, first this one and then the other; nothing has changed yet.
  virtual void notifyDestroying();
  virtual void aboutToDestroy();
  /// Called when the model has taken the new element in.
  virtual void didCreate();
  /// The step of teardown that detaches the element from the far ends of its links; its children are gone by then.
  virtual void disassociateIncoming();
  /// Empties all links without a notice: the end of an element that nothing brings back.
  virtual void basicDisassociateAll();
  /// Tells `m_callback` of each collection whose end has come: those of elements first, then those of values.
  virtual void invalidate();
  /// Tells the model of this new element: it is live from here on. Raises UniquenessConstraint when the model holds an
  /// element of this UUID.
  void notifyCreated();

  // Links.
  /// The far end of a link adds, or removes, `element` to `property` of this element.
  virtual void inverseAdd(ModelElementImpl& element, meta::PropertyImpl& property);
  virtual void inverseRemove(ModelElementImpl& element, meta::PropertyImpl& property);
  /// Whether `property` holds `element`, or a proxy that stands for it; such a proxy is resolved in place.
  virtual bool inverseContainsProxyTo(ModelElementImpl& element, meta::PropertyImpl& property) const;
  /// Drops all outgoing references; with `convert`, far ends in other models keep a proxy. `id` is computed once.
  virtual void convertReferencesToProxies(bool convert, boost::optional<ProxyId>& id);
  /// The far side of a cut link: puts a proxy with `id` where `property` of this element holds `element`.
  virtual void convertToProxy(meta::PropertyImpl& property, ProxyId const& id, ModelElementImpl& element);
  /// Appends the elements that this one contains, in the order of its properties; proxies left out.
  virtual void collectContained(std::vector<ModelElementImpl*>& children) const;
  /// The collection behind a many-valued element property, or null where it has none (yet).
  virtual ReferenceCollection* referenceCollection(meta::PropertyImpl const& property) const;

  bool isProxy() const noexcept { return (m_state & PROXY) != 0; }
  boost::optional<ProxyId> getProxyId() const;
  /// A name by which other models find this element; `local` leaves out the model.
  ProxyId getPersistentProxyId(bool local) const;

  ModelElement container() const noexcept;
  ModelElementImpl* basicContainer() const noexcept { return m_container; }
  meta::Property containmentFeature() const noexcept;
  meta::PropertyImpl* basicContainmentFeature() const noexcept { return m_containmentProperty; }
  void basicSetContainer(ModelElementImpl* container, meta::PropertyImpl* property, unsigned long position);

  // Services of the generated code.
  /// Raises CannotModifyProxy or CannotModifyDestroyedElement when this element can't be changed.
  void requireModifiable() const {
    if ((m_state & REFUSED) != 0) reportRefusal();
  }
  /// Raises CannotModifyProxy for a proxy.
  void requireReal() const {
    if (isProxy()) reportRefusal();
  }
  /// The model in which a change of a collection of this element is a step; null while its links are cleared for good.
  /// Raises CannotModifyProxy and CannotModifyDestroyedElement.
  ModelImpl* changingModel() const {
    if ((m_state & REFUSED) == 0) return m_model;
    if (isProxy() || (m_state & TEARING_DOWN) == 0) reportRefusal();
    return nullptr;
  }
  /// Announces a change of the property with this index: the first time in a transaction level the old value is kept.
  void notifyModifying(unsigned long index);
  /// The same for a property whose value keeps its own undo: an enclosing level's record serves inner ones too.
  void notifyJournaling(unsigned long index);
  /// Refuses a target of another model, and for a containment one that this element lies in. Tolerates null.
  void checkCompatibleModel(ModelElementImpl* target, meta::PropertyImpl const& property) const;
  /// Whether `found`, which a proxy in `property` names, may stand there in its place: it is of the property's class,
  /// and no other model's open transaction may take it back. In a containment it becomes a child: it has to be of this
  /// model, which must be open to change, and to lie nowhere else, unless a map is to take it from there.
  bool mayReplaceProxy(ModelElementImpl const& found, meta::PropertyImpl const& property) const;
  /// Whether an open transaction may take back this element or, where `end` is given, what that property holds.
  bool mayBeTakenBack(meta::PropertyImpl const* end) const noexcept;
  /// Whether this dead element may live again: the transaction that destroyed it is still open.
  bool mayLiveAgain() const noexcept { return (m_state & (DESTROYED | ANNOUNCED)) == (DESTROYED | ANNOUNCED); }
  bool isAnnounced() const noexcept { return (m_state & ANNOUNCED) != 0; }
  /// True while its teardown is under way, or it is leaving memory: far ends let go of it together, when all have left.
  bool isEnding() const noexcept { return (m_state & ENDING) != 0; }
  /// Has `collection` let go of this element, which is ending, together with the others that leave it.
  void leaveLater(ReferenceCollection& collection);
  /// True while the transaction that created this element is open and may take it back.
  bool isProvisional() const noexcept { return m_createdLevel != NO_LEVEL; }
  /// True when no old values are needed: the element is not announced yet, or new at the present transaction level.
  bool needsNoOldValues() const noexcept;

  // A leading underscore: acts on another element on behalf of this one. A proxy knows nothing of the links to it: it
  // is left as it is. In another model the change shares the fate of this model's innermost transaction; what can't be
  // made so raises CannotModifyFrozenModel or OtherModelInTransaction.
  void _setContainedByThis(ModelElementImpl* child, meta::PropertyImpl& property);
  void _basicSetUncontained(ModelElementImpl* child);
  void _inverseAddThis(ModelElementImpl* target, meta::PropertyImpl& property, bool announce);
  /// Of a proxy, what it names lets go of this element, if it is in memory and lists it.
  void _inverseRemoveThis(ModelElementImpl* target, meta::PropertyImpl& property);
  bool _inverseContainsThis(ModelElementImpl* target, meta::PropertyImpl& property) const;
  /// The element at the far end of a link, as far as it is in memory: `member`, or what that proxy names, if its
  /// `opposite` lists this element. Loads nothing, but may put an element in its proxy's place.
  ModelElement _farEnd(ModelElement const& member, meta::PropertyImpl& opposite) const;
  void _convertToProxy(ModelElementImpl* target, meta::PropertyImpl& property, ProxyId const& id);
  ProxyId _getPersistentProxyId() const { return getPersistentProxyId(false); }
  // Bare changes of a collection, past the far ends and the container links of its members.
  static void _basicAdd(ReferenceCollection* collection, ModelElement const& element);
  static void _basicRemove(ReferenceCollection* collection, ModelElement const& element);
  static void _basicRemoveAll(ReferenceCollection* collection, std::vector<ModelElement> const& members);
  static void _basicClear(ReferenceCollection* collection);
  /// `to` becomes a copy of `from`, which is of the same class; null empties it.
  static void _basicCopyValues(ReferenceCollection* to, ReferenceCollection const* from);
  /// Whether the collection holds `element`, or a proxy that stands for it; a sequence puts it into the proxy's slot.
  static bool _basicContainsProxyTo(ReferenceCollection* collection, ModelElementImpl& element);

  // Change storage.
  virtual Changes* createChanges() const = 0;
  virtual Storage* createStorage() const = 0;
  virtual void copyValue(Storage* storage, unsigned long index) const;
  virtual void copyStateFromStorage(Storage* storage);

  /// Not safe-linked: an element is in its model's directory exactly while it is live.
  using DirectoryHook =
      boost::intrusive::unordered_set_member_hook<boost::intrusive::link_mode<boost::intrusive::normal_link>>;

 protected:
  ModelElementImpl(Model const& model, boost::uuids::uuid const& uuid);
  ModelElementImpl(ModelImpl& model, boost::uuids::uuid const& uuid);
  /// Where change records come from.
  RecordPool& recordPool() const noexcept;

 private:
  friend class ModelImpl;
  friend class ElementDirectory;
  friend class UndoLog;
  friend class Teardown;
  friend class ChangePublisher;

  [[noreturn]] void reportRefusal() const;
  void recordOldValue(unsigned long index);
  /// The end of an element that nothing brings back: lets go of all that it refers to, and of the model's reference.
  void bury() noexcept;
  bool liesIn(ModelElementImpl const& candidate) const noexcept;
  /// Before `far` changes on behalf of this element: takes its model along where that is another one.
  void reach(ModelElementImpl const& far) const;

  ModelElementImpl* m_container = nullptr;
  meta::PropertyImpl* m_containmentProperty = nullptr;
  Storage* m_record = nullptr;
  DirectoryHook m_directoryHook;
  std::uint32_t m_extentSlot = 0;
};

inline ModelElement::ModelElement(ModelElementImpl* impl) noexcept : Handle(impl) {}
inline ModelElement::ModelElement(ModelElementImpl* impl, Adopt adopt) noexcept : Handle(impl, adopt) {}
inline ModelElementImpl* ModelElement::impl() const noexcept { return static_cast<ModelElementImpl*>(elementImpl()); }
inline ModelElement ModelElementImpl::This() const noexcept {
  return ModelElement(const_cast<ModelElementImpl*>(this));
}

namespace services::hashers {
/// Hashes an element's UUID; a null handle hashes to 0.
struct TESSEL_EXPORT PlinthHasher {
  std::size_t operator()(boost::uuids::uuid const& uuid) const noexcept;
  std::size_t operator()(ModelElement const& element) const noexcept {
    return element.isEmpty() ? 0 : (*this)(element.elementImpl()->getUuid());
  }
};
}  // namespace services::hashers

/// `element` as a handle of class T when it is of that class or below it, otherwise an empty handle. T is an element's
/// handle, of the metamodel too; a model's is none.
template <class T, class = std::enable_if_t<std::is_base_of_v<ModelElement, T>>>
T element_cast(ModelElement const& element);

}  // namespace plinth

template <>
struct std::hash<plinth::ModelElement> {
  std::size_t operator()(plinth::ModelElement const& element) const noexcept {
    return plinth::services::hashers::PlinthHasher()(element);
  }
};
