// One random step done on the real collections and on the plain model, and everything compared afterwards.
// Thread rule: one driver belongs to one thread.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "plain_model.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/Model.hpp"
#include "plinth/ReferenceCollection.hpp"
#include "plinth/diagnostics/Fingerprint.hpp"

namespace collections_test {

enum class Op {
  CREATE,
  ADD,
  INSERT,
  REPLACE,
  ENSURE_AT,
  INSERT_KEEPING,
  INSERT_REPLACING,
  REMOVE,
  ERASE,
  CLEAR,
  REKEY,
  SET_CATEGORY,
  SET_ACTIVE,
  SUBSET_ADD,
  SUBSET_REMOVE,
  SUBSET_CLEAR,
  ADD_PROXY,
  LOAD,
  RESOLVE,
  DESTROY,
  BEGIN,
  COMMIT,
  ROLL_BACK,
  COUNT
};

/// The numbers choose owner, member and position among those that there are, so that a step means something in any
/// state.
struct Step {
  Op op;
  unsigned a, b, c, d;
  unsigned fail;  ///< the passage of a failure point that fails; 0: none
};
std::ostream& operator<<(std::ostream& stream, Step const& step);

/// What a run has really done.
struct Coverage {
  static constexpr std::size_t OPS = static_cast<std::size_t>(Op::COUNT);
  static constexpr std::size_t FEATURES = static_cast<std::size_t>(Feature::COUNT);
  static constexpr std::size_t DEPTHS = 5;
  std::array<unsigned long, OPS> done{}, refused{}, failed{};
  std::array<unsigned long, FEATURES> changed{}, toldOld{}, rolledBack{};
  std::array<unsigned long, DEPTHS> rolledBackLevels{}, committedAt{};
  unsigned long proxiesResolved = 0, reborn = 0, repeatedMembers = 0, crossedContainers = 0;
};

class Driver {
 public:
  Driver(bool listens, Coverage& coverage);
  ~Driver();

  /// Does the step and compares. Gives what differs, or the empty text.
  std::string run(Step const& step);

 private:
  using Real = std::function<void()>;
  using Plain = std::function<std::string(PlainModel&)>;

  void create(Step const& step);
  void put(Step const& step);
  void takeOut(Step const& step);
  void set(Step const& step);
  void destroy(Step const& step);
  void subset(Step const& step);
  void addProxy(Step const& step);
  void load(Step const& step);
  void begin();
  void commit(Step const& step);
  void rollBack(Step const& step);
  void perform(Step const& step, Real const& real, Plain const& plain);

  int pick(std::function<bool(Kind)> const& fits, unsigned number) const;
  plinth::ReferenceCollection& access(Place const& place);
  plinth::ReferenceCollection* present(Place const& place) const;
  plinth::ModelElement handleOf(plinth::ReferenceCollection& collection, int id) const;
  void listen(plinth::ChangeSet const& changes);
  void checkTold(PlainModel const& before);
  void noteRollBack(PlainModel const& undone);

  void compare();
  void compareElement(int id, PlainModel::Item const& item);
  void comparePlace(Place const& place);
  template <class T>
  void expectEqual(T const& found, T const& expected, std::string const& what);
  void fail(std::string const& text);

  plinth::Model m_model = plinth::Model::create();
  Coverage& m_coverage;
  plinth::ListenerRegistration m_registration;
  PlainModel m_plain;
  PlainModel m_base;  ///< when the outermost transaction began
  std::map<int, plinth::ModelElement> m_handles;
  std::vector<std::unique_ptr<plinth::Transaction>> m_transactions;
  std::vector<PlainModel> m_snapshots;
  std::vector<plinth::Fingerprint> m_fingerprints;
  std::set<Place> m_told;
  std::set<int> m_ghosts;  ///< named by proxies of maps and sets, not alive yet
  int m_next = 0;
  std::string m_difference;
};

}  // namespace collections_test
