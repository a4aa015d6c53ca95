#include <QeltaDatabaseDiff.h>
#include <QeltaFieldText.h>
#include <QeltaNames.h>

#include <memory>
#include <set>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

using State = QeltaBlockDifference::State;

struct Options {
  std::string first;
  std::string second;
  Selection selection;
  SourceOptions reading;
  QeltaTolerances tolerances;
  std::vector<std::string> labels;
  std::vector<std::string> ignored;
  bool onlyDifferent = false;
  OutputFormat format = OutputFormat::Table;
};

const char* Name(State state) {
  switch (state) {
    case State::SAME:
      return "same";
    case State::DIFFERENT:
      return "different";
    case State::ONLY_IN_FIRST:
      return "only in first";
    case State::ONLY_IN_SECOND:
      return "only in second";
  }
  return "";
}

void ReadTolerances(Options& options) {
  for (const std::string& text : options.labels) {
    const std::size_t sign = text.rfind('=');
    const std::string number = sign == std::string::npos ? "" : text.substr(sign + 1);
    double value = 0;
    if (!PlainNumber(true)(number).empty() || !CLI::detail::lexical_cast(number, value)) {
      throw CLI::ValidationError("--tol", "'" + text + "' is not of the form LABEL=1e-6.");
    }
    options.tolerances.relativeOfLabel[text.substr(0, sign)] = value;
  }
}

// A tolerance for a label that no block has is a slip of the pen.
void ComplainOfLabels(const Options& options,
                      const std::vector<std::vector<FED_DataDescriptor>>& sources) {
  std::set<std::string> labels;
  for (const auto& keys : sources) {
    for (const FED_DataDescriptor& key : keys) {
      if (key.Has(FED_DataDescriptor::LABEL))
        labels.insert(key.GetString(FED_DataDescriptor::LABEL));
    }
  }
  for (const auto& [label, tolerance] : options.tolerances.relativeOfLabel) {
    if (labels.count(label) > 0) continue;
    const std::vector<std::string> known(labels.begin(), labels.end());
    Console::Complain("--tol: no block has the label '" + label + "'." + Suggest(label, known));
  }
}

std::vector<FED_DataDescriptor::ResultIndex> IgnoredFields(const Options& options) {
  return ParseOption("--ignore-field", [&options] {
    std::vector<FED_DataDescriptor::ResultIndex> fields;
    for (const std::string& name : options.ignored) fields.push_back(ParseFieldName(name));
    return fields;
  });
}

std::string Count(std::uint64_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

// What a person wants to know about a block that differs, indented.
std::string Explain(const QeltaBlockDifference& difference) {
  std::string text = "    " + Count(difference.records, "record") + " in both";
  const auto add = [&text](std::uint64_t number, const char* where) {
    if (number > 0) text += ", " + std::to_string(number) + where;
  };
  add(difference.onlyInFirst, " only in the first");
  add(difference.onlyInSecond, " only in the second");
  if (difference.values > 0) {
    text += "; " + Count(difference.values, "value") +
            (difference.values == 1 ? " differs" : " differ");
    if (difference.greatest > 0) {
      text += " by up to " + ToText(difference.greatest, RowOutput::kTableDigits) + " (relative " +
              ToText(difference.greatestRelative, RowOutput::kTableDigits) + ")";
    }
  }
  return text + "\n    worst: " + difference.worst + "\n";
}

// One line for each block, and what differs below it.
class Report {
 public:
  explicit Report(const Options& options)
      : m_Options(options), m_IsText(options.format == OutputFormat::Table) {
    if (m_IsText) return;
    m_Output = RowOutput::Make(options.format);
    m_Output->Begin({{"state"},
                     {"descriptor"},
                     {"records"},
                     {"only_in_first"},
                     {"only_in_second"},
                     {"values"},
                     {"greatest"},
                     {"greatest_relative"},
                     {"worst"}});
  }

  void Add(const QeltaBlockDifference& difference) {
    ++m_Counts[difference.state];
    if (m_Options.onlyDifferent && difference.state == State::SAME) return;
    if (m_IsText) {
      const std::string state = Name(difference.state);
      Console::Print(state + std::string(16 - state.size(), ' ') + difference.key.ToString() +
                     "\n");
      if (difference.state == State::DIFFERENT) Console::Print(Explain(difference));
      return;
    }
    const auto number = [](std::uint64_t value) { return static_cast<std::int64_t>(value); };
    m_Output->Add({std::string(Name(difference.state)), difference.key.ToString(),
                   number(difference.records), number(difference.onlyInFirst),
                   number(difference.onlyInSecond), number(difference.values), difference.greatest,
                   difference.greatestRelative, difference.worst});
  }

  // True when nothing differs.
  bool Finish() {
    const std::size_t different = m_Counts[State::DIFFERENT];
    const std::size_t onlyInFirst = m_Counts[State::ONLY_IN_FIRST];
    const std::size_t onlyInSecond = m_Counts[State::ONLY_IN_SECOND];
    if (m_IsText) {
      Console::PrintBold(Count(m_Counts[State::SAME] + different, "block") + " in both, " +
                         std::to_string(different) + " different; " + std::to_string(onlyInFirst) +
                         " only in the first, " + std::to_string(onlyInSecond) +
                         " only in the second\n");
    } else {
      m_Output->End();
    }
    return different + onlyInFirst + onlyInSecond == 0;
  }

 private:
  const Options& m_Options;
  bool m_IsText;
  std::unique_ptr<RowOutput> m_Output;
  std::size_t m_Counts[4] = {};
};

int Diff(Options& options) {
  ReadTolerances(options);
  const auto ignored = IgnoredFields(options);
  const QeltaPatternText pattern = options.selection.GetPattern();
  const auto first = ResultSource::Open(options.first, options.reading);
  const auto second = ResultSource::Open(options.second, options.reading);
  const auto keysOfFirst = pattern.Select(first->GetKeys());
  const auto keysOfSecond = pattern.Select(second->GetKeys());
  const bool hasBlocks = !first->GetKeys().empty() || !second->GetKeys().empty();
  if (hasBlocks && keysOfFirst.empty() && keysOfSecond.empty()) {
    Console::Complain("nothing is compared: the selection matches no block on either side");
    return EXIT_NOTHING_FOUND;
  }
  ComplainOfLabels(options, {first->GetKeys(), second->GetKeys()});
  const QeltaDatabaseDiff diff(first->Load(keysOfFirst), second->Load(keysOfSecond),
                               options.tolerances);
  const auto pairs = QeltaDatabaseDiff::Match(keysOfFirst, keysOfSecond, ignored);
  Report report(options);
  {
    Progress progress("comparing", options.reading.showProgress, "blocks");
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      progress.Show(i, pairs.size());
      report.Add(diff.Compare(pairs[i]));
    }
  }
  return report.Finish() ? EXIT_DONE : EXIT_NOTHING_FOUND;
}

}  // namespace

void AddDiffCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("diff", "Compare the results of two sources");
  command->add_option("FIRST", options->first, "Database directory or result file (.frd)")
      ->required();
  command->add_option("SECOND", options->second, "The other one")->required();
  options->selection.AddPatternTo(*command);
  command->add_option("--abs", options->tolerances.absolute, "Absolute tolerance")
      ->check(PlainNumber(true))
      ->type_name("X");
  command->add_option("--rel", options->tolerances.relative, "Relative tolerance")
      ->check(PlainNumber(true))
      ->type_name("X");
  command
      ->add_option("--tol", options->labels,
                   "Relative tolerance for blocks of this LABEL;\nmay be repeated")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("LABEL=X");
  command
      ->add_option("--ignore-field", options->ignored,
                   "Match blocks without looking at these fields")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("FIELD,...");
  command->add_flag("--only-different", options->onlyDifferent,
                    "Leave out blocks that are the same");
  Selection::AddRunningTo(*command, options->reading.acceptRunningJob);
  Selection::AddProgressTo(*command, options->reading.showProgress);
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "Blocks are matched by their keys, records by id or name. Two numbers are the\n"
      "same when they are equal, or differ by no more than the absolute tolerance or\n"
      "the relative one times the greater magnitude. NaN is the same as NaN and differs\n"
      "from every number. Exit code 0: all is the same; 1: something differs.\n"
      "\n"
      "Examples:\n"
      "  qelta diff job.frd run.db --rel 1e-5\n"
      "  qelta diff old.db new.db --tol STRESS=1e-3 --ignore-field ITERATION");
  command->callback([&action, options] { action = [options] { return Diff(*options); }; });
}

}  // namespace qelta
