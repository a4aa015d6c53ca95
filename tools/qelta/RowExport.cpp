#include <QeltaOutputFolder.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "BlockRows.h"
#include "Console.h"
#include "ExportJob.h"
#include "Progress.h"
#include "RowOutput.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

constexpr std::size_t kLongestFileName = 200;

// "tables/" is a folder whether it is there or not.
bool IsFolder(const std::string& name) {
  std::error_code error;
  const auto path = std::filesystem::u8path(name);
  return !path.has_filename() || std::filesystem::is_directory(path, error);
}

std::string FileNameOf(const FED_DataDescriptor& key) {
  static const std::string kStray = "/\\<>:\"|?*\x7f";
  std::string name = key.ToString();
  const auto isStray = [](char c) {
    return static_cast<unsigned char>(c) < ' ' || kStray.find(c) != std::string::npos;
  };
  std::replace_if(name.begin(), name.end(), isStray, '_');
  return name.substr(0, kLongestFileName);
}

std::uint64_t CountRecords(ExportJob& job) {
  std::uint64_t records = 0;
  for (const QeltaBlockInfo& block : job.selection.GetSource().Describe(job.keys)) {
    records += block.records;
  }
  return records;
}

// Rows on their way into files.
class RowFiles {
 public:
  explicit RowFiles(ExportJob& job)
      : m_Database(job.Load()),
        m_Total(CountRecords(job)),
        m_Progress("writing", job.ShowsProgress(), "rows") {}

  RowOutput::Printer PrinterTo(QeltaOutputFile& file) {
    return [this, &file](const std::string& text) {
      file.Write(Console::Printable(text));
      m_Progress.Show(m_Count, m_Total);
      ++m_Count;
    };
  }

  void Write(const FED_DataDescriptor& key, OutputFormat format, RowOutput& output) {
    BlockRows rows(m_Database.GetDataBlock(key), m_Database.GetIdMapsPool(), m_Everything, format);
    m_Rows += rows.Print(output);
  }

  std::uint64_t GetRows() const { return m_Rows; }

 private:
  const FED_Database& m_Database;
  std::uint64_t m_Total;
  Progress m_Progress;
  RowChoice m_Everything;
  std::uint64_t m_Count = 0;
  std::uint64_t m_Rows = 0;
};

std::string Summary(const ExportJob& job, const RowFiles& files) {
  return "wrote " + job.output + ": " + CountText(files.GetRows(), "row") + " of " +
         CountText(job.keys.size(), "block") + "\n";
}

void WriteCsv(const FED_DataDescriptor& key, RowFiles& files, QeltaOutputFile& file) {
  const auto output = RowOutput::MakeCsv(files.PrinterTo(file));
  files.Write(key, OutputFormat::Csv, *output);
  output->End();
  file.Close();
}

std::string ExportCsvFolder(ExportJob& job) {
  QeltaOutputFolder folder(std::filesystem::u8path(job.output));
  RowFiles files(job);
  std::set<std::string> taken;
  for (const FED_DataDescriptor& key : job.keys) {
    std::string name = FileNameOf(key);
    const std::string stem = name;
    for (int i = 2; !taken.insert(name).second; ++i) name = stem + "_" + std::to_string(i);
    WriteCsv(key, files, folder.Add(name + ".csv"));
  }
  folder.Commit();
  return Summary(job, files);
}

}  // namespace

std::string ExportCsvRows(ExportJob& job) {
  if (IsFolder(job.output)) return ExportCsvFolder(job);
  if (job.keys.size() > 1) {
    throw CLI::ValidationError("--output", "a csv file takes one block, not " +
                                               std::to_string(job.keys.size()) +
                                               "; select one, or have a file for each in a "
                                               "folder: --format csv -o FOLDER/");
  }
  QeltaOutputFile file(job.output);
  RowFiles files(job);
  WriteCsv(job.keys.front(), files, file);
  file.Commit();
  return Summary(job, files);
}

std::string ExportJsonRows(ExportJob& job) {
  QeltaOutputFile file(job.output);
  RowFiles files(job);
  const auto output = RowOutput::MakeJsonLines(files.PrinterTo(file));
  for (const FED_DataDescriptor& key : job.keys) {
    files.Write(key, OutputFormat::JsonLines, *output);
  }
  output->End();
  file.Commit();
  return Summary(job, files);
}

}  // namespace qelta
