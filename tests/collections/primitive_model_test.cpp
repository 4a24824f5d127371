// Sequences of values under random changes in nested transactions, beside plain vectors.
#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <tessel_config_datamodel/data/StringParamData.hpp>

#include "plinth/ChangeSet.hpp"

namespace collections_test {
namespace {

using Texts = std::vector<std::u16string>;
namespace data = tessel::internal::config::data;

/// One outermost transaction with random changes and inner transactions; what the sequence should hold is kept beside.
class Driver {
 public:
  explicit Driver(unsigned seed) : m_random(seed) {
    m_sequence.assign({u"a", u"b", u"c"});
    m_registration = m_model.addListener([this](plinth::ChangeSet const& changes) {
      for (auto const* record : changes.changed()) {
        auto const old = record->getOldValue(m_property, plinth::ReflectionPrivateTag::PUBLIC_ACCESS);
        m_old = old.getValue<Texts>();
      }
    });
  }

  void run() {
    Texts const before = m_sequence.values();
    m_old = before;
    m_expected = before;
    bool const keeps = level(0);
    if (!keeps) m_expected = before;
    ASSERT_EQ(m_sequence.values(), m_expected);
    EXPECT_EQ(m_old, before) << "what the listener was told";
  }

 private:
  std::ptrdiff_t size() const { return static_cast<std::ptrdiff_t>(m_expected.size()); }
  std::size_t below(std::size_t bound) { return m_random() % bound; }

  /// Gives whether the transaction was committed.
  bool level(int depth) {
    auto transaction = m_model.beginTransaction();
    for (std::size_t steps = below(8); steps > 0; --steps) {
      if (depth < 3 && below(4) == 0) {
        Texts const before = m_expected;
        if (!level(depth + 1)) m_expected = before;
        EXPECT_EQ(m_sequence.values(), m_expected);
      } else {
        change();
      }
      EXPECT_EQ(static_cast<plinth::PrimitiveSequence<std::u16string> const&>(*m_sequence.oldContents()).values(),
                m_old);
      EXPECT_EQ(m_sequence.oldSize(), m_old.size());
    }
    if (below(2) == 0) return false;
    transaction.commit();
    return true;
  }

  void change() {
    auto const from = static_cast<std::ptrdiff_t>(below(m_expected.size() + 1));
    auto const to = from + static_cast<std::ptrdiff_t>(below(m_expected.size() - static_cast<std::size_t>(from) + 1));
    std::u16string const value(1, static_cast<char16_t>(u'a' + below(26)));
    auto const known = std::find(m_expected.begin(), m_expected.end(), value) - m_expected.begin();
    ASSERT_EQ(m_sequence.indexOf(value),
              known == size() ? plinth::PrimitiveSequence<std::u16string>::ABSENT : static_cast<std::size_t>(known));
    switch (below(8)) {
      case 0:
      case 1:
        m_sequence.push_back(value);
        m_expected.push_back(value);
        break;
      case 2:
        m_sequence.insert(m_sequence.begin() + from, value);
        m_expected.insert(m_expected.begin() + from, value);
        break;
      case 3: {
        Texts const copies(m_expected.begin() + from, m_expected.begin() + to);
        m_sequence.insert(m_sequence.begin() + from, copies.begin(), copies.end());
        m_expected.insert(m_expected.begin() + from, copies.begin(), copies.end());
        break;
      }
      case 4:
        m_sequence.erase(m_sequence.begin() + from, m_sequence.begin() + to);
        m_expected.erase(m_expected.begin() + from, m_expected.begin() + to);
        break;
      case 5:
        if (from == to) break;
        m_sequence.replaceAt(static_cast<std::size_t>(from), value);
        m_expected[static_cast<std::size_t>(from)] = value;
        break;
      case 6:
        changeOneByOne(from, below(2) == 0, value);
        break;
      default:
        if (below(4) != 0) break;
        m_sequence.assign({value, value});
        m_expected = {value, value};
    }
  }

  /// A run of single erases around a place, or of single inserts there.
  void changeOneByOne(std::ptrdiff_t at, bool erases, std::u16string const& value) {
    for (std::size_t count = below(6); count > 0; --count) {
      if (!erases) {
        m_sequence.insert(m_sequence.begin() + at, value);
        m_expected.insert(m_expected.begin() + at, value);
      } else if (at != 0 && (at == size() || below(2) == 0)) {
        --at;
        m_sequence.erase(m_sequence.begin() + at);
        m_expected.erase(m_expected.begin() + at);
      } else if (!m_expected.empty()) {
        EXPECT_EQ(m_sequence.remove(value), std::count(m_expected.begin(), m_expected.end(), value) > 0);
        auto const found = std::find(m_expected.begin(), m_expected.end(), value);
        if (found != m_expected.end()) m_expected.erase(found);
        at = std::min(at, size());
      }
    }
  }

  std::mt19937 m_random;
  plinth::Model m_model = plinth::Model::create();
  data::StringParamData m_owner = data::StringParamData::create(m_model);
  plinth::PrimitiveSequence<std::u16string>& m_sequence = *m_owner->getAllowedValues();
  plinth::meta::Property m_property = m_sequence.getCollectionProperty();
  plinth::ListenerRegistration m_registration;
  Texts m_expected;
  Texts m_old;
};

TEST(SequencesOfValues, AgreeWithPlainVectorsThroughNestedTransactions) {
  for (unsigned seed = 0; seed < 300 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Driver driver(seed);
    for (int i = 0; i < 5; ++i) driver.run();
  }
}

}  // namespace
}  // namespace collections_test
