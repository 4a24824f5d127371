#include "LevelTies.hpp"

#include <algorithm>

#include "ModelState.hpp"
#include "plinth/Messages.hpp"

namespace plinth {

using internal::ModelState;

namespace {

ModelState& modelOf(Handle const& handle) noexcept {
  return internal::stateOf(static_cast<ModelImpl&>(*handle.elementImpl()));
}

}  // namespace

LevelTies::Fate LevelTies::fateOf(std::uint32_t level) const noexcept {
  auto const isAt = [&](Leader const& leader) { return leader.level == level; };
  auto const found = std::find_if(m_leaders.begin(), m_leaders.end(), isAt);
  return found == m_leaders.end() ? Fate(m_model, level) : found->fate;
}

void LevelTies::takeAlong(ModelState& far) {
  std::uint32_t const level = m_model->level();
  if (level == 0) reportException(messages::CannotModifyOutsideTransaction());
  Fate const fate = fateOf(level);
  if (far.level() > 0) {
    Fate const there = far.ties.fateOf(far.level());
    if (there == fate) return;
    // One that ends later than this one does, and only after it, may enclose what is tied to this one.
    std::uint32_t around = level - 1;
    while (around > 0 && fateOf(around) != there) --around;
    if (around == 0) reportException(messages::OtherModelInTransaction(m_model->name(), far.name()));
  }
  far.ties.m_leaders.reserve(far.ties.m_leaders.size() + 1);
  std::list<Follower> follower;
  follower.push_back({fate.second, Handle(&far), far.level() + 1});
  far.begin(false);
  far.ties.m_leaders.push_back({far.level(), fate});
  fate.first->ties.m_followers.splice(fate.first->ties.m_followers.end(), follower);
}

void LevelTies::requireFollowersInnermost() const {
  for (Follower const& follower : m_followers) {
    bool const follows = follower.level == m_model->level();
    if (follows && modelOf(follower.model).level() != follower.itsLevel) {
      reportException(messages::TransactionNotInnermost());
    }
  }
}

void LevelTies::handDown() noexcept {
  Fate const fate = fateOf(m_model->level());
  std::list<Follower>& others = fate.first->ties.m_followers;
  for (auto at = m_followers.begin(); at != m_followers.end();) {
    auto const follower = at++;
    if (follower->level <= m_model->level()) continue;
    ModelState& model = modelOf(follower->model);
    LevelTies& ties = model.ties;
    follower->level = fate.second;
    ties.m_leaders.back().fate = fate;
    if (follower->itsLevel > 1 && ties.fateOf(follower->itsLevel - 1) == fate) {
      ties.m_leaders.pop_back();
      model.log.commitInner();
      m_followers.erase(follower);
    } else if (fate.first != m_model) {
      others.splice(others.end(), m_followers, follower);
    }
  }
}

std::vector<Handle> LevelTies::group() const {
  std::vector<Handle> members{Handle(m_model)};
  for (Follower const& follower : m_followers) members.push_back(follower.model);
  return members;
}

void LevelTies::dissolve() noexcept {
  m_leaders.clear();
  m_followers.clear();
}

bool LevelTies::rollBackTied() noexcept {
  std::uint32_t const level = m_model->level();
  if (Fate const fate = fateOf(level); fate != Fate(m_model, level)) {
    while (fate.first->level() >= fate.second) fate.first->rollBack();
    return true;
  }
  auto const follows = [&](Follower const& follower) { return follower.level == level; };
  while (true) {
    auto const at = std::find_if(m_followers.begin(), m_followers.end(), follows);
    if (at == m_followers.end()) return false;
    Follower const follower = std::move(*at);
    m_followers.erase(at);
    ModelState& model = modelOf(follower.model);
    while (model.level() > follower.itsLevel) model.rollBack();
    model.ties.m_leaders.pop_back();
    model.rollBack();
  }
}

}  // namespace plinth
