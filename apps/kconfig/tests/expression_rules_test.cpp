// The rewriting of conditions, rule by rule. B is bool, T and U are tristate, S is a string.
#include <gtest/gtest.h>

#include "TreeFixture.hpp"
#include "evaluation/ExpressionRules.hpp"
#include "language/ExpressionText.hpp"

namespace kconfig::test {
namespace {

class ExpressionRulesTest : public testing::Test {
 protected:
  ExpressionRulesTest() {
    for (auto const& [name, type] : {std::pair{"B", SymbolType::Boolean},
                                     {"C", SymbolType::Boolean},
                                     {"T", SymbolType::Tristate},
                                     {"U", SymbolType::Tristate},
                                     {"S", SymbolType::String}}) {
      m_tree.symbols[m_tree.symbols.plain(name)].type = type;
    }
  }

  ExpressionId parse(std::string const& text) {
    // The reader's own tree is thrown away: its expression is built anew over the typed symbols.
    Diagnostics diagnostics;
    Input const input{{{"Kconfig", "config X\n\tbool\n\tdepends on " + text + "\n"}}};
    plinth::Model const model = plinth::Model::create();
    MenuTree const parsed = readDefinitions(readTree("Kconfig", surroundingsOf(input), diagnostics, model).schema).tree;
    EXPECT_FALSE(diagnostics.hasErrors()) << text;
    return copy(parsed, parsed.properties.back().condition);
  }
  ExpressionId copy(MenuTree const& from, ExpressionId id) {
    ExpressionPool const& pool = from.expressions;
    auto const symbol = [&](SymbolId other) {
      Symbol const& row = from.symbols[other];
      std::string_view const name = m_tree.texts.intern(row.name);
      return row.kind == SymbolKind::Constant ? m_tree.symbols.constant(name) : m_tree.symbols.plain(name);
    };
    if (isList(pool.op(id))) {
      std::vector<ExpressionId> operands;
      for (ExpressionId const operand : pool.operands(id)) {
        operands.push_back(copy(from, operand));
      }
      return m_tree.expressions.list(pool.op(id), operands);
    }
    if (pool.op(id) == Operator::Not) {
      return m_tree.expressions.negation(copy(from, pool.operand(id)));
    }
    return pool.op(id) == Operator::Symbol
               ? m_tree.expressions.symbol(symbol(pool.left(id)))
               : m_tree.expressions.comparison(pool.op(id), symbol(pool.left(id)), symbol(pool.right(id)));
  }
  std::string print(ExpressionId id) const { return textOf(m_tree.expressions, m_tree.symbols, id); }

  MenuTree m_tree;
  ExpressionRules m_rules{m_tree.expressions, m_tree.symbols};
};

using Cases = std::vector<std::pair<char const*, char const*>>;

TEST_F(ExpressionRulesTest, NormalizingBringsNegationsDownAndSimplifiesBooleanTests) {
  Cases const cases = {{"!!B", "B"},
                       {"!(B && !T)", "!B || T"},
                       {"!(T = m)", "T != m"},
                       {"!(S < 3)", "S >= 3"},
                       {"!(S >= 3)", "S < 3"},
                       {"B = y", "B"},
                       {"B != y", "!B"},
                       {"B = n", "!B"},
                       {"B = m", "n"},
                       {"B != m", "y"},
                       {"T = y", "T = y"},
                       {"!y || !m || !n", "n || m || y"},
                       {"!(B = y && (T || !C))", "!B || (!T && C)"}};
  for (auto const& [text, expected] : cases) {
    EXPECT_EQ(print(m_rules.normalized(parse(text))), expected) << text;
  }
}

TEST_F(ExpressionRulesTest, JoiningLeavesOneOperandWhereTwoSayOneThing) {
  Cases const cases = {{"B && B", "B"},
                       {"B || !B", "y"},
                       {"T || !T", "T || !T"},
                       {"T && T = y", "T = y"},
                       {"T != m && T", "T = y"},
                       {"T && T != n", "T"},
                       {"T = y || T = m", "T != n"},
                       {"T = n || T = y", "T != m"},
                       {"T = m || T = n", "T != y"},
                       {"T != y && T != n", "T = m"},
                       {"T != y && T != m", "T = n"},
                       {"T != m && T != n", "T = y"},
                       {"T = y && T != m", "T = y"},
                       {"T != y && T = y", "n"},
                       {"T = S && T != m", "T = S && T != m"},
                       {"S && S = y", "S && S = y"},
                       {"(B || T) && C && (T || B)", "C && (B || T)"},
                       {"B && (C || C)", "B && C"},
                       {"y && B && n", "y && B && n"},
                       {"B && y && B", "B"}};
  for (auto const& [text, expected] : cases) {
    EXPECT_EQ(print(m_rules.withoutDuplicates(parse(text))), expected) << text;
  }
}

TEST_F(ExpressionRulesTest, RewritesForPlacesThatKnowLessOrMore) {
  EXPECT_EQ(print(m_rules.forBoolean(parse("T != n && (B || !(U != n)) && S != n"))), "T && (B || !U) && S != n");
  EXPECT_EQ(print(m_rules.withModules(parse("B && !m || T = m"), m_tree.symbols.plain("M"))),
            "(B && !(m && M)) || T = m");
  EXPECT_EQ(print(m_rules.differsFromNo(parse("B && (T || !U)"))), "!(B = n || (T = n && U != n))");
  EXPECT_EQ(print(m_rules.differsFromNo(noExpression)), "!n");
}

TEST_F(ExpressionRulesTest, SeesWhichEntryLiesBelowWhich) {
  SymbolId const t = m_tree.symbols.plain("T");
  for (char const* text : {"T", "B && T", "T = y", "T = m && B", "T != n"}) {
    EXPECT_TRUE(m_rules.dependsOn(parse(text), t)) << text;
  }
  for (char const* text : {"!T", "B || T", "T = n", "T != y", "S = T"}) {
    EXPECT_FALSE(m_rules.dependsOn(parse(text), t)) << text;
    EXPECT_TRUE(m_rules.mentions(parse(text), t)) << text;
  }
  EXPECT_FALSE(m_rules.mentions(parse("B && !U"), t));
  EXPECT_TRUE(m_rules.coveredBy(parse("B && C"), parse("T && C && B")));
  EXPECT_FALSE(m_rules.coveredBy(parse("B && C"), parse("B")));
}

}  // namespace
}  // namespace kconfig::test
