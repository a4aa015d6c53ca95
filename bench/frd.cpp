#include <FrdImport.h>
#include <FrdReader.h>

#include "BenchDatabase.h"
#include "Families.h"
#include "FrdSample.h"
#include "peers/LineCount.h"

namespace qelta::bench {
namespace {

// Reads everything, keeps nothing.
class Nobody : public FrdVisitor {};

void Stream(benchmark::State& state) {
  const FrdSample& sample = FrdSample::Instance();
  MeasureBytes(state, sample.GetBytes(), [&] {
    Nobody visitor;
    FrdReader(sample.GetPath()).Read(visitor);
  });
}

void Import(benchmark::State& state) {
  const FrdSample& sample = FrdSample::Instance();
  MeasureBytes(state, sample.GetBytes(), [&] {
    BenchDatabase database;
    ImportFrd(sample.GetPath(), database);
  });
}

void CountLines(benchmark::State& state) {
  const FrdSample& sample = FrdSample::Instance();
  if (!LineCount(sample.GetPath())) {
    state.SkipWithError("wc does not run here");
    return;
  }
  MeasureBytes(state, sample.GetBytes(), [&] { LineCount(sample.GetPath()); });
}

}  // namespace

void AddFrd(Suite& suite) {
  const Peer lineCount{"wc -l", CountLines};
  suite.Add("frd/stream", Stream, {lineCount}, Clock::Wall);
  suite.Add("frd/import into memory", Import, {lineCount}, Clock::Wall);
}

}  // namespace qelta::bench
