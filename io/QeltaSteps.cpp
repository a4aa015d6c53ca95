#include "QeltaSteps.h"

#include <FED_OnfInfoPool.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "FrdFieldMap.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

// In the order in which a run counts them.
constexpr std::array kStepFields = {Key::ITERATION, Key::LOADCASE, Key::SUBSTEP,
                                    Key::INCREMENT, Key::STATE,    Key::ANALYSIS};
using StepOrder = std::array<std::optional<int>, kStepFields.size()>;

StepOrder OrderOf(const Key& key) {
  StepOrder order{};
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (key.Has(kStepFields[i])) order[i] = key.GetInteger(kStepFields[i]);
  }
  return order;
}

Key StepKey(const StepOrder& order) {
  Key key;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i]) key.SetInteger(kStepFields[i], *order[i]);
  }
  return key;
}

// Calls `visit` with the order itself, and with every order that has some of its values only.
template <class Visit>
void VisitParts(const StepOrder& order, const Visit& visit) {
  for (unsigned left = 0; left < 1U << order.size(); ++left) {
    StepOrder part = order;
    bool isPart = true;
    for (std::size_t i = 0; i < order.size(); ++i) {
      if ((left >> i & 1U) == 0) continue;
      isPart = isPart && order[i].has_value();
      part[i].reset();
    }
    if (isPart) visit(part);
  }
}

using StepGroups = std::map<StepOrder, std::vector<Key>>;

// The groups that hold at several steps: others say more and agree with them.
std::set<StepOrder> FindShared(const StepGroups& groups) {
  std::set<StepOrder> shared = {StepOrder{}};
  for (const auto& group : groups) {
    VisitParts(group.first, [&](const StepOrder& part) {
      if (part != group.first && groups.count(part) != 0) shared.insert(part);
    });
  }
  return shared;
}

std::vector<Key> BlocksAt(const StepOrder& order, const StepGroups& groups) {
  std::vector<Key> blocks;
  VisitParts(order, [&](const StepOrder& part) {
    const auto found = groups.find(part);
    if (found == groups.end() || part == StepOrder{}) return;
    blocks.insert(blocks.end(), found->second.begin(), found->second.end());
  });
  std::sort(blocks.begin(), blocks.end());
  return blocks;
}

void FindValue(const FED_Database& database, QeltaStep& step) {
  constexpr std::array<std::pair<FED_OnfId, const char*>, 3> kKinds = {
      {{ONF_FRAME_TIME, "time"},
       {ONF_FRAME_FREQUENCY, "frequency"},
       {ONF_BUCKLING_FACTOR, "buckling factor"}}};
  for (const auto& [kind, name] : kKinds) {
    Key key = step.key;
    key.SetInteger(Key::ONF, kind);
    if (!database.HasBlock(key)) continue;
    const FED_DataBlock& block = database.GetDataBlock(key);
    if (!block.HasRecord(0)) continue;
    step.value = block.GetScalar(0);
    step.valueName = name;
    return;
  }
}

bool Grow(const std::vector<double>& values) {
  return std::adjacent_find(values.begin(), values.end(),
                            [](double a, double b) { return !(a < b); }) == values.end();
}

std::optional<QeltaStepScale> ScaleOfValues(const std::vector<QeltaStep>& steps) {
  QeltaStepScale scale;
  for (const QeltaStep& step : steps) {
    if (!step.value || !std::isfinite(*step.value) || step.valueName != steps.front().valueName)
      return std::nullopt;
    scale.values.push_back(*step.value);
  }
  scale.name = steps.front().valueName;
  if (!Grow(scale.values)) return std::nullopt;
  return scale;
}

std::optional<QeltaStepScale> ScaleOfField(const std::vector<QeltaStep>& steps,
                                           Key::ResultIndex field) {
  QeltaStepScale scale;
  for (const QeltaStep& step : steps) {
    if (!step.key.Has(field)) return std::nullopt;
    scale.values.push_back(step.key.GetInteger(field));
  }
  scale.name = Key::RD_NAME_TYPE_ITEMS[field].name;
  if (!Grow(scale.values)) return std::nullopt;
  return scale;
}

std::string KindName(const Key& key) {
  if (!key.Has(Key::ONF)) return "custom";
  return FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(key.GetInteger(Key::ONF))).name;
}

std::string BaseName(const Key& key) {
  const std::string label = key.Has(Key::LABEL) ? key.GetString(Key::LABEL) : "";
  return label.empty() ? KindName(key) : label;
}

std::string SubLevelName(int level) {
  switch (level) {
    case FRD_IMAGINARY_PART:
      return "imaginary";
    case FRD_AMPLITUDE:
      return "amplitude";
    case FRD_PHASE:
      return "phase";
    case FRD_FILTERED:
      return "filtered";
    default:
      return "sublevel" + std::to_string(level);
  }
}

constexpr std::array kSuffixFields = {Key::OBJECTIVE_ID, Key::LAYER, Key::MICROPHONE,
                                      Key::DIRECTION, Key::SUB_LEVEL};

std::string Suffix(const Key& key, Key::ResultIndex field) {
  if (!key.Has(field)) return {};
  switch (field) {
    case Key::OBJECTIVE_ID:
      return "_" + key.GetString(field);
    case Key::LAYER:
      return "_layer" + std::to_string(key.GetInteger(field));
    case Key::MICROPHONE:
      return "_microphone" + std::to_string(key.GetInteger(field));
    case Key::DIRECTION:
      return "_direction" + std::to_string(key.GetInteger(field));
    default:
      return "_" + SubLevelName(key.GetInteger(field));
  }
}

// The suffixes that blocks of one base name have, for each field.
using Suffixes = std::array<std::set<std::string>, kSuffixFields.size()>;

std::map<std::string, Suffixes> CollectSuffixes(const std::vector<Key>& keys) {
  std::map<std::string, Suffixes> all;
  for (const Key& key : keys) {
    Suffixes& suffixes = all[BaseName(key)];
    for (std::size_t i = 0; i < kSuffixFields.size(); ++i) {
      suffixes[i].insert(Suffix(key, kSuffixFields[i]));
    }
  }
  return all;
}

std::string NameOf(const Key& key, const Suffixes& suffixes) {
  std::string name = BaseName(key);
  for (std::size_t i = 0; i < kSuffixFields.size(); ++i) {
    // Which part of a complex value it is must always be told.
    const bool isPart = kSuffixFields[i] == Key::SUB_LEVEL;
    if (isPart || suffixes[i].size() > 1) name += Suffix(key, kSuffixFields[i]);
  }
  return name;
}

}  // namespace

QeltaSteps FindSteps(const FED_Database& database, const std::vector<Key>& keys) {
  StepGroups groups;
  for (const Key& key : keys) groups[OrderOf(key)].push_back(key);
  const std::set<StepOrder> shared = FindShared(groups);
  QeltaSteps result;
  for (const auto& [order, blocks] : groups) {
    if (order == StepOrder{}) result.constant = blocks;
    if (shared.count(order) != 0) continue;
    QeltaStep step;
    step.key = StepKey(order);
    step.blocks = BlocksAt(order, groups);
    FindValue(database, step);
    result.steps.push_back(std::move(step));
  }
  return result;
}

bool HoldsAt(const Key& block, const Key& step) {
  return std::all_of(kStepFields.begin(), kStepFields.end(), [&](Key::ResultIndex field) {
    return !block.Has(field) ||
           (step.Has(field) && block.GetInteger(field) == step.GetInteger(field));
  });
}

QeltaStepScale ScaleOf(const std::vector<QeltaStep>& steps) {
  if (steps.empty()) return {"step", {}};
  if (auto scale = ScaleOfValues(steps)) return *scale;
  for (const Key::ResultIndex field :
       {Key::ITERATION, Key::INCREMENT, Key::STATE, Key::LOADCASE, Key::SUBSTEP}) {
    if (auto scale = ScaleOfField(steps, field)) return *scale;
  }
  QeltaStepScale scale{"step", {}};
  for (std::size_t i = 0; i < steps.size(); ++i) scale.values.push_back(static_cast<double>(i));
  return scale;
}

std::vector<std::string> NameBlocks(const std::vector<Key>& keys) {
  const std::map<std::string, Suffixes> suffixes = CollectSuffixes(keys);
  std::set<std::pair<StepOrder, std::string>> taken;
  const auto isTaken = [&taken](const StepOrder& step, const std::string& name) {
    bool is = false;
    VisitParts(step, [&](const StepOrder& part) { is = is || taken.count({part, name}) != 0; });
    return is;
  };
  std::vector<std::string> names;
  for (const Key& key : keys) {
    std::string name = NameOf(key, suffixes.at(BaseName(key)));
    const StepOrder step = OrderOf(key);
    if (isTaken(step, name)) name += "_" + KindName(key);
    const std::string stem = name;
    for (int i = 2; isTaken(step, name); ++i) name = stem + "_" + std::to_string(i);
    taken.emplace(step, name);
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace qelta
