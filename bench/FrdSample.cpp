#include "FrdSample.h"

#include <FED_Message.h>

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace qelta::bench {
namespace {

constexpr int kNodes = 20000;
constexpr int kFrames = 50;  // some 140 MB

constexpr const char* kDisplacementHead =
    " -4  DISP        3    1\n"
    " -5  D1          1    2    1    0\n"
    " -5  D2          1    2    2    0\n"
    " -5  D3          1    2    3    0\n";

constexpr const char* kStressHead =
    " -4  STRESS      6    1\n"
    " -5  SXX         1    4    1    1\n"
    " -5  SYY         1    4    2    2\n"
    " -5  SZZ         1    4    3    3\n"
    " -5  SXY         1    4    1    2\n"
    " -5  SYZ         1    4    2    3\n"
    " -5  SZX         1    4    3    1\n";

// A table as the solver writes it, one line a node.
std::string MakeTable(const std::string& head, int valueCount) {
  std::minstd_rand random;
  std::uniform_real_distribution<double> values(-1e3, 1e3);
  std::string table = head;
  for (int node = 1; node <= kNodes; ++node) {
    table += FED_MESSAGE(" -1%10d", node);
    for (int i = 0; i < valueCount; ++i) table += FED_MESSAGE("%12.5E", values(random));
    table += '\n';
  }
  return table + " -3\n";
}

std::string MakeFrameHead(int frame) {
  return FED_MESSAGE("    1PSTEP%26d%12d           1\n", frame, frame) +
         FED_MESSAGE("  100CL%5d%12.5E%12d%22d%5d%11d\n", 100 + frame, 0.01 * frame, kNodes, 1,
                     frame, 1);
}

void Write(std::ostream& out) {
  const std::string displacements = MakeTable(kDisplacementHead, 3);
  const std::string stresses = MakeTable(kStressHead, 6);
  out << "    1C\n" << MakeTable(FED_MESSAGE("    2C%30d%38d\n", kNodes, 1), 3);
  for (int frame = 1; frame <= kFrames; ++frame) {
    out << MakeFrameHead(frame) << displacements << MakeFrameHead(frame) << stresses;
  }
  out << " 9999\n";
}

}  // namespace

const FrdSample& FrdSample::Instance() {
  static const FrdSample sample;
  return sample;
}

FrdSample::FrdSample() : m_Path(m_Folder.GetPath() / "sample.frd") {
  std::ofstream out(m_Path, std::ios::binary);
  Write(out);
  if (!out.flush()) throw std::runtime_error("cannot write " + m_Path.u8string());
  m_Bytes = static_cast<std::size_t>(std::filesystem::file_size(m_Path));
}

}  // namespace qelta::bench
