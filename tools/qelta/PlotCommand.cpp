#include <CairoCanvas.h>
#include <ChartPainter.h>
#include <QeltaFieldText.h>
#include <QeltaNames.h>
#include <QeltaOutputFile.h>
#include <QeltaSeries.h>
#include <QeltaStringUtil.h>
#include <SvgCanvas.h>
#include <TextChart.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "NumberRanges.h"
#include "Progress.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Size {
  int width;
  int height;
};

struct Options {
  Selection selection;
  QeltaSeriesRequest request;
  std::vector<std::string> ids;
  std::vector<std::string> names;
  std::vector<std::string> indices;
  std::string by;
  std::string output;
  std::string size;
  std::string title;
  std::string theme = "light";
  bool isAscii = false;
  bool isLogX = false;
  bool isLogY = false;
  bool printsData = false;
  OutputFormat format = OutputFormat::Table;
};

// ---- what the command line asks for

void AddNumbers(std::vector<QeltaRecordChoice>& records, QeltaRecordChoice::By by,
                const std::string& option, const std::vector<std::string>& texts) {
  constexpr std::size_t kMost = 100;
  for (const std::string& text : texts) {
    for (const NumberRange& range : ParseRanges(option, text)) {
      for (std::int64_t number = range.first; number <= range.last; ++number) {
        if (records.size() == kMost) {
          throw CLI::ValidationError(option, "more than " + std::to_string(kMost) +
                                                 " records make no chart; choose some.");
        }
        records.push_back({by, static_cast<std::int32_t>(number), {}});
      }
    }
  }
}

QeltaSeriesRequest RequestOf(const Options& options) {
  QeltaSeriesRequest request = options.request;
  AddNumbers(request.records, QeltaRecordChoice::By::Id, "--id", options.ids);
  AddNumbers(request.records, QeltaRecordChoice::By::Index, "--index", options.indices);
  for (const std::string& name : options.names) {
    request.records.push_back({QeltaRecordChoice::By::Name, 0, name});
  }
  if (!options.by.empty()) {
    request.by = ParseOption("--by", [&options] { return ParseFieldName(options.by); });
  }
  return request;
}

PictureFormat FormatOf(const std::string& name) {
  static const std::map<std::string, PictureFormat> kFormats = {
      {".svg", PictureFormat::Svg}, {".png", PictureFormat::Png}, {".pdf", PictureFormat::Pdf}};
  const std::size_t dot = std::min(name.rfind('.'), name.size());
  for (const auto& [ending, format] : kFormats) {
    if (!IsSameName(ending, name.substr(dot))) continue;
    if (format == PictureFormat::Svg || HasCairo()) return format;
    throw CLI::ValidationError("-o", "this build of qelta draws no " + ending.substr(1) +
                                         " (it is without cairo); take .svg");
  }
  throw CLI::ValidationError("-o",
                             "'" + name + "' is no picture: take a name with .svg, .png or .pdf");
}

// "960x600", each number within its limits.
Size SizeOf(const std::string& text, Size standard, Size least, Size most) {
  if (text.empty()) return standard;
  const std::size_t sign = std::min(text.find('x'), text.size() - 1);
  const auto isWithin = [](const std::string& number, int low, int high, int& value) {
    return QeltaStringUtil::ToInt(number, value) == STATUS_OK && low <= value && value <= high;
  };
  Size size = standard;
  if (isWithin(text.substr(0, sign), least.width, most.width, size.width) &&
      isWithin(text.substr(sign + 1), least.height, most.height, size.height)) {
    return size;
  }
  const auto toText = [](Size s) {
    return std::to_string(s.width) + "x" + std::to_string(s.height);
  };
  throw CLI::ValidationError(
      "--size", "'" + text + "' is no size from " + toText(least) + " to " + toText(most));
}

Size PictureSizeOf(const Options& options) {
  return SizeOf(options.size, {960, 600}, {100, 80}, {10000, 10000});
}

Size TextSizeOf(const Options& options) {
  using Text = TextChartOptions;
  const int columns = std::max<int>(static_cast<int>(Console::GetWidth()), Text::kLeastColumns);
  return SizeOf(options.size, {std::min(columns, 500), 24}, {Text::kLeastColumns, Text::kLeastRows},
                {500, 200});
}

// Before anything is read.
void CheckOptions(const Options& options) {
  if (!options.output.empty()) FormatOf(options.output);
  options.output.empty() ? TextSizeOf(options) : PictureSizeOf(options);
}

// ---- the numbers

std::vector<QeltaSeries> Collect(Options& options, const std::vector<FED_DataDescriptor>& keys) {
  const QeltaSeriesRequest request = RequestOf(options);
  ResultSource& source = options.selection.GetSource();
  const auto needed =
      ParseOption("-x", [&] { return KeysForSeries(keys, source.GetKeys(), request); });
  const FED_Database& database = source.Load(needed);
  Progress progress("reading blocks", options.selection.GetOptions().showProgress, "blocks");
  try {
    return CollectSeries(
        database, keys, request,
        [&progress](std::uint64_t done, std::uint64_t total) { progress.Show(done, total); });
  } catch (const FED_Exception& failure) {
    if (!IsBadSeriesRequest(failure)) throw;
    throw CLI::ValidationError(failure.what());
  }
}

// Says which have no values.
std::vector<QeltaSeries> WithValues(std::vector<QeltaSeries> all) {
  std::vector<QeltaSeries> some;
  for (QeltaSeries& series : all) {
    if (HasValues(series)) {
      some.push_back(std::move(series));
    } else {
      Console::Complain("there are no values of " + series.name);
    }
  }
  return some;
}

void PrintData(const std::vector<QeltaSeries>& all, OutputFormat format) {
  const auto output = RowOutput::Make(format);
  output->Begin({{"series", Table::Align::Left}, {all.front().xName}, {"value"}});
  for (const QeltaSeries& series : all) {
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      const OutputCell x = series.hasWholeX ? OutputCell(static_cast<std::int64_t>(series.x[i]))
                                            : OutputCell(series.x[i]);
      output->Add({series.name, x, series.y[i]});
    }
  }
  output->End();
}

// ---- the chart

std::string WithUnit(const std::string& name, const std::string& unit) {
  if (unit.empty() || IsSameName(unit, name)) return name;
  return name.empty() ? "[" + unit + "]" : name + " [" + unit + "]";
}

template <class Value>
bool IsCommon(const std::vector<QeltaSeries>& all, Value QeltaSeries::*value) {
  return std::all_of(all.begin(), all.end(),
                     [&](const QeltaSeries& one) { return one.*value == all.front().*value; });
}

Chart ChartOf(const std::vector<QeltaSeries>& all, const Options& options) {
  Chart chart;
  chart.title = options.title;
  chart.xLabel = WithUnit(all.front().xName, all.front().xUnit);
  chart.isLogX = options.isLogX;
  chart.isLogY = options.isLogY;
  chart.hasWholeX = all.front().hasWholeX;
  const bool isCommonUnit = IsCommon(all, &QeltaSeries::unit);
  if (all.size() == 1) {
    chart.yLabel = WithUnit(all.front().name, all.front().unit);
  } else if (isCommonUnit) {
    const bool isCommonQuantity = IsCommon(all, &QeltaSeries::quantity);
    chart.yLabel = WithUnit(isCommonQuantity ? all.front().quantity : "", all.front().unit);
  }
  for (const QeltaSeries& one : all) {
    chart.series.push_back({isCommonUnit ? one.name : WithUnit(one.name, one.unit), one.x, one.y});
  }
  return chart;
}

// What a logarithmic axis cannot show is told.
Chart Placeable(Chart chart) {
  const std::size_t count = DropUnplaceable(chart);
  if (!ExtentOf(chart).hasPoints) {
    throw CLI::ValidationError(
        chart.isLogY ? "--logy" : "--logx",
        count > 0 ? "no value is above 0; leave out the logarithmic axis" : "no value is finite");
  }
  if (count > 0) {
    Console::Complain("left out what is not above 0 and has no place on a logarithmic axis: " +
                      std::to_string(count) + (count == 1 ? " value" : " values"));
  }
  return chart;
}

void DrawPicture(const Chart& chart, const Options& options) {
  const PictureFormat format = FormatOf(options.output);
  const Size size = PictureSizeOf(options);
  const std::string name = chart.title.empty() ? chart.yLabel : chart.title;
  const std::unique_ptr<Canvas> canvas =
      format == PictureFormat::Svg ? std::make_unique<SvgCanvas>(size.width, size.height, name)
                                   : MakeCairoCanvas(format, size.width, size.height, name);
  PaintChart(chart, options.theme == "dark" ? ChartTheme::Dark() : ChartTheme::Light(), *canvas);
  QeltaOutputFile file(options.output);
  file.Write(canvas->Finish());
  file.Commit();
}

void PrintChart(const Chart& chart, const Options& options) {
  const Size size = TextSizeOf(options);
  TextChartOptions text;
  text.columns = static_cast<std::size_t>(size.width);
  text.rows = static_cast<std::size_t>(size.height);
  text.isUnicode = !options.isAscii && Console::IsUtf8();
  Console::Print(DrawTextChart(chart, text));
}

int Plot(Options& options) {
  CheckOptions(options);
  RequestOf(options);
  if (!options.output.empty()) options.selection.RequireOther(options.output);
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  if (keys.empty()) return EXIT_NOTHING_FOUND;
  const std::vector<QeltaSeries> all = WithValues(Collect(options, keys));
  if (all.empty()) return EXIT_NOTHING_FOUND;
  if (options.printsData) {
    PrintData(all, options.format);
    return EXIT_DONE;
  }
  const Chart chart = Placeable(ChartOf(all, options));
  if (options.output.empty()) {
    PrintChart(chart, options);
  } else {
    DrawPicture(chart, options);
  }
  return EXIT_DONE;
}

// ---- the options

CLI::Option* AddRepeated(CLI::App& command, const std::string& name,
                         std::vector<std::string>& texts, const std::string& help,
                         const std::string& type) {
  return command.add_option(name, texts, help)
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name(type);
}

void AddSeriesOptions(CLI::App& command, Options& options) {
  AddRepeated(command, "-y", options.request.y,
              "What to show: LABEL.component, KIND.component,\n"
              "or label or kind alone where it is one number;\n"
              "each -y gives a series",
              "LABEL.COMPONENT")
      ->required();
  command
      .add_option("-x", options.request.x,
                  "A field of the key, time, frequency or factor,\n"
                  "index, or another number of the records")
      ->type_name("FIELD");
  AddRepeated(command, "--id", options.ids, "The records of these ids: a series each", "9,18");
  AddRepeated(command, "--name", options.names, "The record of this name", "NAME");
  AddRepeated(command, "--index", options.indices, "The records at these indices, from 0", "0,3");
  static const std::map<std::string, QeltaReduction> kReductions = {{"max", QeltaReduction::Max},
                                                                    {"min", QeltaReduction::Min},
                                                                    {"mean", QeltaReduction::Mean},
                                                                    {"norm", QeltaReduction::Norm}};
  command
      .add_option("--of", options.request.of,
                  "What stands for many records: max (as a rule),\nmin, mean or norm")
      ->transform(CLI::CheckedTransformer(kReductions).description(""))
      ->type_name("max|min|mean|norm");
  command.add_option("--by", options.by, "A series for each value of this field")
      ->type_name("FIELD");
}

void AddChartOptions(CLI::App& command, Options& options) {
  command
      .add_option("-o,--output", options.output,
                  "Draw into this file: .svg, .png or .pdf; without\n"
                  "it the chart is drawn as text")
      ->type_name("FILE");
  command.add_flag("--ascii", options.isAscii, "Draw as text in plain ASCII characters")
      ->excludes("--output");
  RowOutput::AddFormatOption(command, options.format);
  command.get_option("--format")
      ->description("Print the numbers, not a chart: table, csv, json\nor jsonl")
      ->excludes("--output")
      ->excludes("--ascii")
      ->each([&options](const std::string&) { options.printsData = true; });
  command.add_flag("--logx", options.isLogX, "Logarithmic x axis");
  command.add_flag("--logy", options.isLogY, "Logarithmic y axis");
  command.add_option("--title", options.title, "Stands above the chart")->type_name("TEXT");
  command
      .add_option("--size", options.size,
                  "Pixels (points in a PDF), 960x600 as a rule; as\n"
                  "text, characters")
      ->type_name("WxH");
  command.add_option("--theme", options.theme, "light (as a rule) or dark")
      ->check(CLI::IsMember(std::set<std::string>{"light", "dark"}).description(""))
      ->type_name("light|dark");
}

}  // namespace

void AddPlotCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("plot", "Draw numbers over iterations, time or records");
  options->selection.AddTo(*command);
  AddSeriesOptions(*command, *options);
  AddChartOptions(*command, *options);
  command->footer(
      "Components are those of 'qelta stats': x, magnitude, mises, principal1 and more.\n"
      "Without -x, the first of ITERATION, INCREMENT, STATE, LOADCASE, SUBSTEP ... that\n"
      "tells the blocks apart; where one block is all there is, its records. Blocks of\n"
      "different kinds and labels are different series; blocks at the same x are split\n"
      "by what tells them apart. A block of one record is that record. Units are the\n"
      "quantities of the kind. Values that are no numbers break a line.\n"
      "\n"
      "Examples:\n"
      "  qelta plot run.db -y OBJECTIVE_VALUE --logy -o history.svg\n"
      "  qelta plot job.frd -w LOADCASE=1 -x time -y DISP.z --id 9,18 -o disp.png\n"
      "  qelta plot job.frd -w ONF=nodal_stress -y STRESS.mises --by LOADCASE\n"
      "  qelta plot run.db -w LABEL=HISTORY -x index -y FIELD_1 --format csv");
  command->callback([&action, options] { action = [options] { return Plot(*options); }; });
}

}  // namespace qelta
