// What an element leaves to the library: the operations by which the kernel, the scheme and the collections change,
// link and end elements. Users don't see them at a handle; the library reaches them by internal::core().
// Ownership and thread rule: see ModelElement.hpp.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "plinth/ElementImpl.hpp"

namespace plinth::internal {

/// The link of an element in its model's directory; an element is there exactly while it is live.
struct DirectoryLink {
  DirectoryLink* next = nullptr;
};

class TESSEL_EXPORT ElementCore : public ElementImpl {
 public:
  /// The position that stands for none in `basicSetContainer`.
  static constexpr unsigned long NO_INDEX = ~0UL;

  ~ElementCore() override;

  // Life.
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

  ModelElementImpl* basicContainer() const noexcept { return m_container; }
  meta::PropertyImpl* basicContainmentFeature() const noexcept { return m_containmentProperty; }
  void basicSetContainer(ModelElementImpl* container, meta::PropertyImpl* property, unsigned long position);

  // Services of the scheme and the collections.
  /// Raises CannotModifyProxy or CannotModifyDestroyedElement when this element can't be changed.
  void requireModifiable() const {
    if ((m_state & REFUSED) != 0) reportRefusal();
  }
  /// Raises CannotModifyProxy for a proxy.
  void requireReal() const {
    if ((m_state & PROXY) != 0) reportRefusal();
  }
  /// The model in which a change of a collection of this element is a step; null while its links are cleared for good.
  /// Raises CannotModifyProxy and CannotModifyDestroyedElement.
  ModelImpl* changingModel() const {
    if ((m_state & REFUSED) == 0) return m_model;
    if ((m_state & PROXY) != 0 || (m_state & TEARING_DOWN) == 0) reportRefusal();
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
  ProxyId _getPersistentProxyId() const;
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
  /// Where change records come from.
  RecordPool& recordPool() const noexcept;

  // What the kernel alone uses.
  ElementCore(ModelImpl& model, boost::uuids::uuid const& uuid);
  void recordOldValue(unsigned long index);
  /// The end of an element that nothing brings back: lets go of all that it refers to, and of the model's reference.
  void bury() noexcept;
  bool liesIn(ElementCore const& candidate) const noexcept;
  /// Before `far` changes on behalf of this element: takes its model along where that is another one.
  void reach(ElementCore const& far) const;
  [[noreturn]] void reportRefusal() const;

  // Which stand in the first cache line, by ElementImpl.
  using ElementImpl::addRefUnshared;
  using ElementImpl::ANNOUNCED;
  using ElementImpl::DESTROYED;
  using ElementImpl::ENDING;
  using ElementImpl::HAS_CONTAINED;
  using ElementImpl::m_createdLevel;
  using ElementImpl::m_live;
  using ElementImpl::m_model;
  using ElementImpl::m_state;
  using ElementImpl::NO_LEVEL;
  using ElementImpl::PROXY;
  using ElementImpl::REFUSED;
  using ElementImpl::TEARING_DOWN;

  ModelElementImpl* m_container = nullptr;
  meta::PropertyImpl* m_containmentProperty = nullptr;
  Storage* m_record = nullptr;
  DirectoryLink m_directoryLink;
  std::uint32_t m_extentSlot = 0;

  ModelElementImpl& self() noexcept;
  ModelElementImpl const& self() const noexcept;
};

/// The library's side of an element.
inline ElementCore& core(ModelElementImpl& element) noexcept;
inline ElementCore const& core(ModelElementImpl const& element) noexcept;

}  // namespace plinth::internal
