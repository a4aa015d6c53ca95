#include "OutputFile.h"

#include <FED_Failure.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

namespace qelta {

const char* const kOutputFileErrorId = "310000000965";

namespace {

[[noreturn]] void ThrowUnwritten(const std::string& name, const std::string& reason) {
  FED_Failure::Throw(kOutputFileErrorId, "|%P|qelta|OutputFile",
                     "Cannot write %s: %s. Check the folder, its permissions and the free space.",
                     name.c_str(), reason.c_str());
}

}  // namespace

void WriteOutputFile(const std::string& name, const std::string& content) {
  const std::string temporary = name + "." + std::to_string(std::random_device()()) + ".tmp";
  std::ofstream file(temporary, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  std::error_code error(errno, std::generic_category());
  if (file.good()) std::filesystem::rename(temporary, name, error);
  if (file.good() && !error) return;
  std::error_code ignored;
  std::filesystem::remove(temporary, ignored);
  ThrowUnwritten(name, error.message());
}

}  // namespace qelta
