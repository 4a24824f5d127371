// The persistent name of an element that is not in memory.
// Thread rule: a plain value.
#pragma once

#include <boost/optional.hpp>
#include <boost/uuid/uuid.hpp>
#include <cstddef>
#include <string>

#include "groundwork/export.hpp"

namespace plinth {

/// Class and identity of an element, and the name of the model that holds it. Without a model name the element lies in
/// the model of whoever refers to it: the proxy is local.
struct ProxyId {
  std::u16string className;               ///< dotted qualified name of the element's class
  std::u16string element;                 ///< the element's UUID as text
  boost::optional<std::u16string> model;  ///< name of the model in the model directory; empty: local

  bool isLocal() const noexcept { return !model; }

  friend bool operator==(ProxyId const& left, ProxyId const& right) {
    return left.element == right.element && left.model == right.model && left.className == right.className;
  }
  friend bool operator!=(ProxyId const& left, ProxyId const& right) { return !(left == right); }
};

/// The UUID that `id` names, or the nil UUID when its text is none.
TESSEL_EXPORT boost::uuids::uuid elementUuid(ProxyId const& id) noexcept;

struct ProxyIdHash {
  std::size_t operator()(ProxyId const& id) const noexcept { return std::hash<std::u16string>()(id.element); }
};

}  // namespace plinth
