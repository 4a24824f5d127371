// The root of all model elements: the handle and the implementation with the services and the overridable operations
// that the generated classes use. Ownership: a live element is held by its model; a handle keeps the object, not its
// life. Thread rule: the model's thread.
#pragma once

#include <iosfwd>
#include <string>
#include <type_traits>
#include <vector>

#include "plinth/ElementCore.hpp"
#include "plinth/Handle.hpp"

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

/// What users have of an element. What it leaves to the library stands in its base, which internal::core() reaches.
class TESSEL_EXPORT ModelElementImpl : protected internal::ElementCore {
 public:
  using ReflectionPrivateTag = plinth::ReflectionPrivateTag;
  using Changes = plinth::Changes;
  using Storage = plinth::Storage;

  using ElementCore::NO_INDEX;

  ~ModelElementImpl() override;

  using ElementImpl::generateNewUuid;
  using ElementImpl::getUuid;
  using ElementImpl::isLive;
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

  /// Ends the life of this element and of all it contains; detaches what points at it. Memory stays until the last
  /// handle goes. Linear in what is destroyed; does not recurse on depth. Raises CannotModifyProxy for a proxy.
  void destroy();
  ModelElement container() const noexcept;
  meta::Property containmentFeature() const noexcept;
  /// Whether the model has taken the element in, which a proxy never is.
  bool isAnnounced() const noexcept { return (m_state & ANNOUNCED) != 0; }

  bool isProxy() const noexcept { return (m_state & PROXY) != 0; }
  /// Complete with plinth/ProxyId.hpp, as the next.
  boost::optional<ProxyId> getProxyId() const;
  /// A name by which other models find this element; `local` leaves out the model.
  ProxyId getPersistentProxyId(bool local) const;

 protected:
  ModelElementImpl(Model const& model, boost::uuids::uuid const& uuid);
  ModelElementImpl(ModelImpl& model, boost::uuids::uuid const& uuid);

 private:
  friend internal::ElementCore;
  friend ModelElement;
  friend internal::ElementCore& internal::core(ModelElementImpl& element) noexcept;
  friend internal::ElementCore const& internal::core(ModelElementImpl const& element) noexcept;
};

inline ModelElement::ModelElement(ModelElementImpl* impl) noexcept : Handle(impl) {}
inline ModelElement::ModelElement(ModelElementImpl* impl, Adopt adopt) noexcept : Handle(impl, adopt) {}
inline ModelElementImpl* ModelElement::impl() const noexcept { return static_cast<ModelElementImpl*>(elementImpl()); }
inline ModelElement ModelElementImpl::This() const noexcept {
  return ModelElement(const_cast<ModelElementImpl*>(this));
}

namespace internal {
inline ElementCore& core(ModelElementImpl& element) noexcept { return element; }
inline ElementCore const& core(ModelElementImpl const& element) noexcept { return element; }
inline ModelElementImpl& ElementCore::self() noexcept { return static_cast<ModelElementImpl&>(*this); }
inline ModelElementImpl const& ElementCore::self() const noexcept {
  return static_cast<ModelElementImpl const&>(*this);
}
}  // namespace internal

namespace services::hashers {
/// Hashes an element's UUID; a null handle hashes to 0.
struct TESSEL_EXPORT PlinthHasher {
  std::size_t operator()(boost::uuids::uuid const& uuid) const noexcept;
  std::size_t operator()(ModelElement const& element) const noexcept {
    return element.isEmpty() ? 0 : (*this)(element.elementImpl()->getUuid());
  }
};
}  // namespace services::hashers

/// The class and the UUID, and whether it is destroyed or a proxy: for tests, logs and debuggers.
TESSEL_EXPORT std::ostream& operator<<(std::ostream& stream, ModelElement const& element);

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
