// A small model with every shape of property filled: maps, sequences, sets, opposites, references between roots,
// optional and datatype values, and a tree of expressions. UUIDs are made from names, so that two samples are the same
// element by element.
#pragma once

#include <string>
#include <tessel_config_datamodel/data.hpp>
#include <tessel_config_datamodel/expr.hpp>
#include <tessel_config_datamodel/ext.hpp>
#include <tessel_config_datamodel/runtime.hpp>

#include "groundwork/NameUuid.hpp"
#include "plinth/Model.hpp"

namespace sample {

namespace data = tessel::internal::config::data;
namespace expr = tessel::internal::config::expr;
namespace ext = tessel::internal::ext;
namespace runtime = tessel::internal::config::runtime;

using groundwork::nameUuid;

struct SampleModel {
  plinth::Model model = plinth::Model::create();
  ext::ConfigStore store = ext::ConfigStore::create(model, nameUuid("store"));
  ext::ConfigProfile day = profile(u"day");
  ext::ConfigProfile night = profile(u"night");
  ext::ConfigEntry volume = entry(day, u"volume", 3.5);
  ext::ConfigEntry balance = entry(day, u"balance", -0.5);

  runtime::ConfigurationState configuration = runtime::ConfigurationState::create(model, nameUuid("configuration"));
  runtime::CategoryState category = runtime::CategoryState::create(model, nameUuid("category"));
  runtime::TagState tag = runtime::TagState::create(model, nameUuid("tag"));
  runtime::PerspectiveState perspective = runtime::PerspectiveState::create(model, nameUuid("perspective"));
  runtime::ParamState first = param(u"first");
  runtime::ParamState second = param(u"second");

  expr::NumericOperation sum = expr::NumericOperation::create(model, nameUuid("sum"));
  expr::NumericConstant left = operand(u"left", 1);
  expr::NumericConstant right = operand(u"right", 2);

  SampleModel() {
    store->setActiveProfile(day);
    category->setKey(u"sound");
    configuration->getCategoriesMutable()->add(category);
    configuration->setConfigStore(store);
    tag->setId(u"advanced");
    configuration->getTagsMutable()->insert(tag);
    perspective->setId(u"all");
    configuration->getPerspectivesMutable()->insert(perspective);
    first->getTagsMutable()->add(tag);
  }

 private:
  static boost::uuids::uuid uuidOf(std::u16string const& name) {
    return nameUuid(std::string(name.begin(), name.end()));
  }
  ext::ConfigProfile profile(std::u16string const& id) const {
    auto const made = ext::ConfigProfile::create(model, uuidOf(id));
    made->setId(id);
    store->getProfilesMutable()->insert(made);
    return made;
  }
  ext::ConfigEntry entry(ext::ConfigProfile const& owner, std::u16string const& key, double value) const {
    auto const made = ext::ConfigEntry::create(model, uuidOf(key));
    made->setKey(key);
    auto const content = data::DoubleParamData::create(model, uuidOf(key + u" data"));
    content->setValue(value);
    made->setData(content);
    owner->getValuesMutable()->insert(made);
    return made;
  }
  runtime::ParamState param(std::u16string const& key) const {
    auto const made = runtime::ParamState::create(model, uuidOf(key));
    made->setKey(key);
    configuration->getParamsMutable()->insert(made);
    made->setCategory(category);
    perspective->getMembersMutable()->add(made);
    return made;
  }
  expr::NumericConstant operand(std::u16string const& name, double value) const {
    auto const made = expr::NumericConstant::create(model, uuidOf(name));
    made->setValue(value);
    sum->getOperandsMutable()->add(made);
    return made;
  }
};

/// A chain of operations, each the only operand of the one before; made in one transaction. Gives the topmost.
inline expr::NumericOperation deepTree(plinth::Model const& model, std::size_t depth) {
  auto transaction = model.beginTransaction();
  auto const root = expr::NumericOperation::create(model);
  auto above = root;
  for (std::size_t i = 1; i < depth; ++i) {
    auto const below = expr::NumericOperation::create(model);
    above->getOperandsMutable()->add(below);
    above = below;
  }
  transaction.commit();
  return root;
}

}  // namespace sample
