// What the sources of ReferenceSequence share.
// Ownership and thread rule: see ReferenceSequence.hpp.
#pragma once

#include "plinth/collections/ReferenceSequence.hpp"

namespace plinth {

inline bool isRealElement(ModelElement const& element) { return !element.isEmpty() && !element->isProxy(); }

/// The undo of the slots; the filter follows them.
class ReferenceSequence::Journal final : public detail::SequenceJournal<ModelElement> {
 public:
  explicit Journal(ReferenceSequence& sequence) noexcept
      : SequenceJournal(sequence.m_elements), m_sequence(&sequence) {}
  void undoTo(std::size_t mark) noexcept override {
    SequenceJournal::undoTo(mark);
    ++m_sequence->m_edits;
    m_sequence->refillFilter();
  }

 private:
  ReferenceSequence* m_sequence;
};

}  // namespace plinth
