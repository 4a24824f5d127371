// Handles of the metamodel's own elements.
#include <gtest/gtest.h>

#include "plinth/ElementDirectory.hpp"
#include "plinth/meta/MetaRegistry.hpp"
#include "sample_model.hpp"

namespace {

using namespace plinth::meta;  // NOLINT: the vocabulary of these checks
using plinth::ModelElement;

template <class T, class = void>
constexpr bool isCastTarget = false;
template <class T>
constexpr bool isCastTarget<T, std::void_t<decltype(plinth::element_cast<T>(ModelElement()))>> = true;
static_assert(isCastTarget<Class> && isCastTarget<ModelElement> && !isCastTarget<plinth::Model>);

/// The handle fits elements that one of the implementations stands behind, and no others.
template <class Handle, class... Implementations>
void expectCasts() {
  std::size_t count = 0;
  sample::SampleModel const s;
  for (plinth::Model const& model : {MetaRegistry::getInstance().model(), s.model}) {
    for (auto* const impl : model->directory().all()) {
      bool const isOne = ((dynamic_cast<Implementations const*>(impl) != nullptr) || ...);
      auto const cast = plinth::element_cast<Handle>(ModelElement(impl));
      EXPECT_EQ(cast.ModelElement::impl(), isOne ? impl : nullptr) << impl->getMetaClass()->narrowName();
      count += isOne ? 1 : 0;
    }
  }
  EXPECT_GT(count, 0U);
}

TEST(MetaHandle, IsCastOnlyToWhatTheObjectIs) {
  expectCasts<ModelElement, plinth::ModelElementImpl>();
  expectCasts<Type, TypeImpl>();
  expectCasts<StructuredType, ClassImpl, DataTypeImpl>();
  expectCasts<Class, ClassImpl>();
  expectCasts<DataType, DataTypeImpl>();
  expectCasts<Enum, EnumImpl>();
  expectCasts<PrimitiveType, PrimitiveTypeImpl>();
  expectCasts<EnumLiteral, EnumLiteralImpl>();
  expectCasts<Package, PackageImpl>();
  expectCasts<TypedElement, PropertyImpl, OperationImpl>();
  expectCasts<Property, PropertyImpl>();
  expectCasts<Operation, OperationImpl>();
}

}  // namespace
