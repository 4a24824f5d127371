// The children that builders are to make next.
// Ownership: a value of Orchestrator::run. Thread rule: the thread of the model that is built in.
#pragma once

#include <boost/container/small_vector.hpp>

#include "plinth/ModelFwd.hpp"

namespace plinth {

/// A child that a builder is to make, and the containment property that takes it.
struct CascadeStep {
  meta::PropertyImpl* property;
  ModelElementBuilder* child;
};
class CascadeSteps : public boost::container::small_vector<CascadeStep, 8> {};

}  // namespace plinth
