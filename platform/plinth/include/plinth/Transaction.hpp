// A transaction of a caller. It commits when told so; ending it any other way takes back all that was changed since it
// began. Transactions nest: an inner one that is taken back leaves the outer one as it was.
// A transaction is one model's, and takes along what it reaches: where an opposite link leads into another model, its
// far end changes at a level of that model which ends as this one does. Ownership: holds its model. Ends when it is
// destroyed.
// Thread rule: the model's thread.
#pragma once

#include "plinth/Handle.hpp"

namespace plinth {

class TESSEL_EXPORT Transaction {
 public:
  Transaction(Transaction&& other) noexcept;
  Transaction(Transaction const&) = delete;
  Transaction& operator=(Transaction const&) = delete;
  /// Takes back what is uncommitted, inner transactions that are still open included.
  ~Transaction();

  /// Makes the changes part of the enclosing transaction, or, for an outermost one, final, and tells the listeners.
  /// Raises TransactionNotInnermost while an inner transaction is open, TransactionEnded after the end. O(records of
  /// the transaction).
  void commit();
  /// The same; the value is the foundation's and is empty throughout.
  void commit(boost::optional<Value> const& value);
  /// True until the transaction has been committed or taken back, by itself or with an outer one.
  bool isOpen() const noexcept;

 private:
  friend class ModelImpl;
  Transaction(ModelImpl& model, unsigned level, unsigned long serial) noexcept;

  Handle m_model;
  unsigned m_level;
  unsigned long m_serial;
  bool m_open = true;
};

}  // namespace plinth
