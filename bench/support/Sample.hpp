// What the programs make and measure on: keys, and the small models that several of them share.
// Thread rule: one thread.
#pragma once

#include <plinth/Model.hpp>
#include <string>
#include <tessel_config_datamodel/data/DoubleParamDataBuilder.hpp>
#include <tessel_config_datamodel/ext/ConfigEntryBuilder.hpp>
#include <tessel_config_datamodel/ext/ConfigProfileBuilder.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>
#include <vector>

#include "support/Plain.hpp"

namespace bench {

namespace data = tessel::internal::config::data;
namespace ext = tessel::internal::ext;

/// `count` different keys of the length that keys have, in no order.
std::vector<std::u16string> makeKeys(std::size_t count);

/// The positions below `count`, in no order.
std::vector<std::size_t> makeOrder(std::size_t count);

/// Numeric data elements of one model, and as many plain ones.
std::vector<data::DoubleParamData> makeNumbers(plinth::Model const& model, std::size_t count);
std::vector<std::unique_ptr<plain::Number>> makePlainNumbers(plain::UndoLog& log, std::size_t count);

/// A profile with an entry and its data for each key, made by setters in one transaction.
ext::ConfigProfile makeProfile(plinth::Model const& model, std::vector<std::u16string> const& keys);
/// The same by a tree of builders.
ext::ConfigProfile buildProfile(plinth::Model const& model, std::vector<std::u16string> const& keys);
plain::Profile makePlainProfile(std::vector<std::u16string> const& keys, plain::UndoLog& log);

}  // namespace bench
