#include "ExportJob.h"

#ifdef QELTA_HDF5
#include <QeltaHdf5.h>

#include "Progress.h"
#include "TargetDatabase.h"
#endif

namespace qelta {

std::string ExportHdf5File(ExportJob& job) {
#ifdef QELTA_HDF5
  constexpr int kFastest = 1;
  QeltaHdf5ExportOptions options;
  if (job.compresses) options.deflateLevel = kFastest;
  const FED_Database& database = job.Load();
  Progress progress("writing", job.ShowsProgress());
  ExportHdf5(
      database, job.keys, job.output,
      [&progress](std::uint64_t done, std::uint64_t total) { progress.Show(done, total); },
      options);
  return "wrote " + job.output + ": " + CountText(job.keys.size(), "block") + "\n";
#else
  throw CLI::ValidationError("--output",
                             "cannot write " + job.output + ": this qelta was built without HDF5.");
#endif
}

}  // namespace qelta
