// Handles of the metamodel's own elements.
#include <gtest/gtest.h>

#include <functional>

#include "plinth/meta/MetaRegistry.hpp"
#include "sample_model.hpp"

namespace {

namespace meta = plinth::meta;
using plinth::ModelElement;

template <class T, class = void>
constexpr bool isCastTarget = false;
template <class T>
constexpr bool isCastTarget<T, std::void_t<decltype(plinth::element_cast<T>(ModelElement()))>> = true;
static_assert(isCastTarget<meta::Class> && isCastTarget<ModelElement> && !isCastTarget<plinth::Model>);

TEST(MetaHandle, IsCastOnlyToWhatTheObjectIs) {
  sample::SampleModel s;
  struct Row {
    std::function<bool(ModelElement const&)> isCast;
    std::function<bool(ModelElement const&)> isOne;
    std::size_t count = 0;
  };
  auto const row = [](auto handle, auto const&... implementations) {
    using Handle = decltype(handle);
    return Row{
        [](ModelElement const& each) {
          auto const cast = plinth::element_cast<Handle>(each);
          EXPECT_TRUE(cast.isEmpty() || cast == each);
          return !cast.isEmpty();
        },
        [](ModelElement const& each) {
          return ((dynamic_cast<std::decay_t<decltype(*implementations)> const*>(each.impl()) != nullptr) || ...);
        }};
  };
  meta::ClassImpl* const asClass = nullptr;
  meta::DataTypeImpl* const asDataType = nullptr;
  std::vector<Row> rows{row(meta::Type(), static_cast<meta::TypeImpl*>(nullptr)),
                        row(meta::StructuredType(), asClass, asDataType),
                        row(meta::Class(), asClass),
                        row(meta::DataType(), asDataType),
                        row(meta::Enum(), static_cast<meta::EnumImpl*>(nullptr)),
                        row(meta::PrimitiveType(), static_cast<meta::PrimitiveTypeImpl*>(nullptr)),
                        row(meta::EnumLiteral(), static_cast<meta::EnumLiteralImpl*>(nullptr)),
                        row(meta::Package(), static_cast<meta::PackageImpl*>(nullptr)),
                        row(meta::TypedElement(), static_cast<meta::TypedElementImpl*>(nullptr)),
                        row(meta::Property(), static_cast<meta::PropertyImpl*>(nullptr)),
                        row(meta::Operation(), static_cast<meta::OperationImpl*>(nullptr))};
  auto const& registry = meta::MetaRegistry::getInstance();
  for (plinth::Model const& model : {registry.model(), s.model}) {
    for (auto* const impl : model->directory().all()) {
      ModelElement const element(impl);
      EXPECT_EQ(plinth::element_cast<ModelElement>(element), element);
      for (Row& each : rows) {
        bool const isOne = each.isOne(element);
        EXPECT_EQ(each.isCast(element), isOne) << element->getMetaClass()->narrowName();
        each.count += isOne ? 1 : 0;
      }
    }
  }
  for (Row const& each : rows) EXPECT_GT(each.count, 0U);
  EXPECT_EQ(meta::Class::metaClass()->getSuperclass()->getSuperclass(), meta::Type::metaClass());
}

}  // namespace
