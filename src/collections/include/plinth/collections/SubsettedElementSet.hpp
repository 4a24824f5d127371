// The members of class S of a parent collection P, as a view; see SubsetView. Size and look-up are linear in the
// parent. Ownership and thread rule: see SubsetView.hpp.
#pragma once

#include "plinth/collections/SubsetView.hpp"

namespace plinth {

template <class S, class P>
class SubsettedElementSet final : public SubsetView {
 public:
  using Element = S;
  using value_type = S;

  explicit SubsettedElementSet(P& parent, ModelElementImpl* owner = nullptr, meta::PropertyImpl* property = nullptr,
                               Filter filter = {})
      : SubsetView(parent, std::move(filter), owner, property), m_typedParent(&parent) {}

  meta::Class const& getCollectionType() const override { return S::metaClass(); }

  bool empty() const override { return begin() == end(); }
  std::size_t rawSize() const override { return static_cast<std::size_t>(std::distance(begin(), end())); }

  void add(S const& element) { addElement(element); }
  void remove(S const& element) { genericRemove(element); }
  bool contains(S const& element) const { return containsElement(element); }

  /// Walks the parent in its order and skips what does not qualify.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = S;
    using difference_type = std::ptrdiff_t;
    using pointer = S const*;
    using reference = S const&;

    Iterator(SubsettedElementSet const& view, typename P::Iterator at) : m_view(&view), m_at(at) { skip(); }
    reference operator*() const { return static_cast<S const&>(static_cast<ModelElement const&>(*m_at)); }
    pointer operator->() const { return &**this; }
    Iterator& operator++() {
      ++m_at;
      skip();
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(Iterator const& left, Iterator const& right) { return left.m_at == right.m_at; }
    friend bool operator!=(Iterator const& left, Iterator const& right) { return left.m_at != right.m_at; }

   private:
    void skip() {
      while (m_at != m_view->m_typedParent->end() && !m_view->shows(*m_at)) ++m_at;
    }
    SubsettedElementSet const* m_view;
    typename P::Iterator m_at;
  };
  using const_iterator = Iterator;
  Iterator begin() const { return Iterator(*this, m_typedParent->begin()); }
  Iterator end() const { return Iterator(*this, m_typedParent->end()); }

 protected:
  std::vector<ModelElement> shown() const override { return {begin(), end()}; }

 private:
  P* m_typedParent;
};

}  // namespace plinth
