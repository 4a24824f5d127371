// Trees a hundred thousand deep are made, taken back, and destroyed on the usual stack.
#include <gtest/gtest.h>

#include <tessel_config_datamodel/expr/NumericOperationBuilder.hpp>

#include "support/checks.hpp"

using tessel::internal::config::expr::NumericOperation;

namespace {

constexpr std::size_t DEPTH = 100'000;

std::unique_ptr<NumericOperation::Builder> deepBuilder(plinth::Model const& model) {
  auto top = std::make_unique<NumericOperation::Builder>(model);
  for (std::size_t i = 1; i < DEPTH; ++i) {
    auto above = std::make_unique<NumericOperation::Builder>(model);
    above->addOperands(std::move(top));
    top = std::move(above);
  }
  return top;
}

NumericOperation createIntoDepth(plinth::Model const& model) {
  auto const root = NumericOperation::create(model);
  auto lowest = root;
  for (std::size_t i = 1; i < DEPTH; ++i) {
    auto const child = lowest->createIntoOperands(std::make_unique<NumericOperation::Builder>(model));
    lowest = plinth::element_cast<NumericOperation>(child);
  }
  return root;
}

TEST(DeepTree, IsCreatedTakenBackMadeAgainAndDestroyed) {
  support::onUsualStack([] {
    auto const model = plinth::Model::create();
    NumericOperation root;
    {
      auto const transaction = model.beginTransaction();
      root = createIntoDepth(model);
      EXPECT_EQ(model->elementCount(), DEPTH);
    }
    EXPECT_FALSE(root);
    EXPECT_EQ(model->elementCount(), 0U);
    root = createIntoDepth(model);
    {
      auto const transaction = model.beginTransaction();
      root->destroy();
      EXPECT_EQ(model->elementCount(), 0U);
    }
    EXPECT_TRUE(root);
    EXPECT_EQ(model->elementCount(), DEPTH);
    root->destroy();
    EXPECT_EQ(model->elementCount(), 0U);
  });
}

TEST(DeepTree, IsBuiltLeftWithItsModelAndUnloaded) {
  support::onUsualStack([] {
    auto model = plinth::Model::create();
    plinth::ModelElement root;
    {
      auto const transaction = model.beginTransaction();
      root = deepBuilder(model)->create();
      EXPECT_EQ(model->elementCount(), DEPTH);
    }
    EXPECT_FALSE(root);
    root = deepBuilder(model)->create();
    deepBuilder(model)->create();
    model->unload(root);
    EXPECT_EQ(model->elementCount(), DEPTH);
    EXPECT_TRUE(support::isSound(model));
    root = plinth::ModelElement();
    model = plinth::Model();
  });
}

}  // namespace
