#include <QeltaVtuExport.h>

#include <algorithm>

#include "ExportJob.h"
#include "Progress.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

// What values need around them: their mesh, the time of their step, what moves the nodes.
bool IsNeeded(const FED_DataDescriptor& key) {
  if (!key.Has(FED_DataDescriptor::ONF)) return false;
  constexpr FED_OnfId kKinds[] = {
      ONF_NODE_COORDINATES, ONF_ELEMENT_TOPOLOGY, ONF_ELEMENT_ATTRIBUTES, ONF_FRAME_TIME,
      ONF_FRAME_FREQUENCY,  ONF_BUCKLING_FACTOR,  ONF_DISPLACEMENT,       ONF_MODE_SHAPE};
  const int kind = key.GetInteger(FED_DataDescriptor::ONF);
  return std::find(std::begin(kKinds), std::end(kKinds), kind) != std::end(kKinds);
}

std::string Summary(const ExportJob& job, const QeltaVtuExport& files) {
  std::string text = "wrote " + job.output + ": " + CountText(files.GetStepCount(), "step") + ", " +
                     CountText(files.GetFileCount(), "file") + "\n";
  for (const FED_DataDescriptor& key : files.GetLeftOut()) {
    text += "left out " + key.ToString() + ": no numbers\n";
  }
  if (files.GetStrayCount() > 0) {
    text +=
        "left out " + CountText(files.GetStrayCount(), "record") + " of what is not in the mesh\n";
  }
  return text;
}

template <class Write>
std::string Export(ExportJob& job, Write write) {
  const FED_Database& database = job.Load(IsNeeded);
  Progress progress("writing", job.ShowsProgress());
  QeltaVtuOptions options;
  options.compresses = job.compresses;
  options.deformation = job.deformation;
  options.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
    progress.Show(done, total);
  };
  QeltaVtuExport files(database, job.keys, std::move(options));
  write(files);
  return Summary(job, files);
}

}  // namespace

std::string ExportVtuFile(ExportJob& job) {
  return Export(job, [&job](QeltaVtuExport& files) {
    if (files.GetFileCount() > 1) {
      throw CLI::ValidationError(
          "--output", "a .vtu file takes one step of one mesh, not " +
                          std::to_string(files.GetFileCount()) +
                          "; select one, such as -w INCREMENT=max, or write them all: -o NAME.pvd");
    }
    files.WriteFile(job.output);
  });
}

std::string ExportVtuCollection(ExportJob& job) {
  return Export(job, [&job](QeltaVtuExport& files) { files.WriteCollection(job.output); });
}

}  // namespace qelta
