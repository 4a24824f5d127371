// The undo of a set or map: nodes put in and taken out, values replaced, and whole former contents. Nodes that were
// taken out are kept as they are, so that putting them back allocates nothing. Ownership: belongs to the collection
// whose container it takes back. Thread rule: the model's thread.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "plinth/AbstractOwnedCollection.hpp"

namespace plinth::detail {

template <class C, class = void>
struct MappedType {
  using type = std::monostate;
};
template <class C>
struct MappedType<C, std::void_t<typename C::mapped_type>> {
  using type = typename C::mapped_type;
};

/// The steps of one node-based container.
template <class C>
class NodeSteps {
 public:
  using Key = typename C::key_type;
  using Node = typename C::node_type;
  using Mapped = typename MappedType<C>::type;
  static constexpr bool IS_MAP = !std::is_same_v<Mapped, std::monostate>;

  void reserve() { makeRoomFor(m_steps, 1); }
  void reserveReset() {
    reserve();
    makeRoomFor(m_former, 1, 1);
  }
  /// `key` stands in the node that was inserted: its address stays good wherever the node goes.
  void inserted(Key const& key) noexcept { m_steps.emplace_back(Node(), &key, Mapped(), Kind::INSERTED); }
  void erased(Node node) noexcept { m_steps.emplace_back(std::move(node), nullptr, Mapped(), Kind::ERASED); }
  void replaced(Key const& key, Mapped former) noexcept {
    m_steps.emplace_back(Node(), &key, std::move(former), Kind::REPLACED);
  }
  void reset(C former) noexcept {
    m_former.push_back(std::move(former));
    m_steps.emplace_back(Node(), nullptr, Mapped(), Kind::RESET);
  }

  std::size_t size() const noexcept { return m_steps.size(); }
  void clear() noexcept {
    forgetSteps(m_steps);
    m_former.clear();
  }

  void undoLast(C& container) noexcept {
    Step& step = m_steps.back();
    switch (step.kind) {
      case Kind::INSERTED:
        container.erase(container.find(*step.key));
        break;
      case Kind::ERASED:
        container.insert(std::move(step.node));
        break;
      case Kind::REPLACED:
        if constexpr (IS_MAP) container.find(*step.key)->second = std::move(step.former);
        break;
      case Kind::RESET:
        container = std::move(m_former.back());
        m_former.pop_back();
        break;
    }
    m_steps.pop_back();
  }

  C oldContents(C contents) const {
    std::size_t former = m_former.size();
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      if (step->kind == Kind::INSERTED) {
        contents.erase(*step->key);
      } else if (step->kind == Kind::RESET) {
        contents = m_former[--former];
      } else if constexpr (IS_MAP) {
        if (step->kind == Kind::ERASED) contents.emplace(step->node.key(), step->node.mapped());
        if (step->kind == Kind::REPLACED) contents.find(*step->key)->second = step->former;
      } else {
        if (step->kind == Kind::ERASED) contents.insert(step->node.value());
      }
    }
    return contents;
  }
  std::size_t oldSize(std::size_t size) const noexcept {
    std::size_t former = m_former.size();
    for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step) {
      if (step->kind == Kind::INSERTED) --size;
      if (step->kind == Kind::ERASED) ++size;
      if (step->kind == Kind::RESET) size = m_former[--former].size();
    }
    return size;
  }

 private:
  enum class Kind : std::uint8_t { INSERTED, ERASED, REPLACED, RESET };
  struct Step {
    Step(Node&& taken, Key const* at, Mapped&& value, Kind how) noexcept
        : node(std::move(taken)), key(at), former(std::move(value)), kind(how) {}
    Node node;
    Key const* key;
    Mapped former;
    Kind kind;
  };
  std::vector<Step> m_steps;
  std::vector<C> m_former;
};

/// The journal of a collection that is one such container.
template <class C>
class NodeJournal final : public CollectionJournal {
 public:
  explicit NodeJournal(C& container) noexcept : m_container(&container) {}
  NodeSteps<C>& nodes() noexcept { return m_nodes; }
  NodeSteps<C> const& nodes() const noexcept { return m_nodes; }
  void reserveReset() { m_nodes.reserveReset(); }
  void reset(C former) noexcept { m_nodes.reset(std::move(former)); }
  C oldContents() const { return m_nodes.oldContents(*m_container); }
  std::size_t oldSize() const noexcept { return m_nodes.oldSize(m_container->size()); }
  std::size_t steps() const noexcept override { return m_nodes.size(); }
  void clear() noexcept override { m_nodes.clear(); }
  void undoTo(std::size_t mark) noexcept override {
    while (m_nodes.size() > mark) m_nodes.undoLast(*m_container);
  }

 private:
  C* m_container;
  NodeSteps<C> m_nodes;
};

}  // namespace plinth::detail
