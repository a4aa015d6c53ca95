#include "DatabaseDirectory.h"

#include <algorithm>

#include "Catalogue.h"
#include "Damage.h"
#include "FED_Message.h"
#include "Payload.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|DatabaseDirectory";

constexpr const char* kPayloadStart = "payload-";
constexpr const char* kPayloadEnd = ".qd";

bool IsOurs(const std::string& name) {
  const std::string catalogue = DatabaseDirectory::kCatalogue;
  return name == "lock" || name.compare(0, catalogue.size(), catalogue) == 0 ||
         DatabaseDirectory::NumberOfPayload(name) > 0;
}

}  // namespace

std::string DatabaseDirectory::NameOfPayload(std::uint64_t number) {
  return kPayloadStart + std::to_string(number) + kPayloadEnd;
}

std::uint64_t DatabaseDirectory::NumberOfPayload(const std::string& name) {
  std::uint64_t number = 0;
  for (std::size_t i = 8; i < name.size() && '0' <= name[i] && name[i] <= '9'; ++i) {
    number = number * 10 + static_cast<std::uint64_t>(name[i] - '0');
  }
  return name == NameOfPayload(number) ? number : 0;
}

std::vector<std::string> DatabaseDirectory::ListForeign() const {
  std::vector<std::string> names = m_Files.List(m_Path);
  names.erase(std::remove_if(names.begin(), names.end(), IsOurs), names.end());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> DatabaseDirectory::ListPayloads() const {
  std::vector<std::string> names = m_Files.List(m_Path);
  const auto isOther = [](const std::string& name) { return NumberOfPayload(name) == 0; };
  names.erase(std::remove_if(names.begin(), names.end(), isOther), names.end());
  return names;
}

bool DatabaseDirectory::WasEverSaved() const {
  const std::vector<std::string> payloads = ListPayloads();
  return std::any_of(payloads.begin(), payloads.end(), [this](const std::string& name) {
    return Payload::ReadAcknowledged(m_Files, PathOf(name)) > 0;
  });
}

DatabaseDirectory::State DatabaseDirectory::Look() const {
  const PathKind kind = m_Files.GetKind(m_Path);
  if (kind == PathKind::NOTHING) return State::ABSENT;
  if (kind != PathKind::DIRECTORY) {
    FED_Failure::Throw("220300000031", kLocation,
                       "%s is a file, but a database is a directory. Choose another name.",
                       m_Path.c_str());
  }
  if (m_Files.GetKind(PathOf(kCatalogue)) == PathKind::NOTHING) RequireNothingForeign();
  if (!Catalogue::IsUnfinished(m_Files, PathOf(kCatalogue))) return State::THERE;
  if (!WasEverSaved()) return State::UNFINISHED;
  throw Damage("220300000032",
               FED_MESSAGE("The database %s is damaged: its %s is lost, and with it the places of "
                           "all blocks. Restore a backup.",
                           m_Path.c_str(), kCatalogue),
               kLocation);
}

void DatabaseDirectory::RequireNothingForeign() const {
  const std::vector<std::string> foreign = ListForeign();
  if (foreign.empty()) return;
  FED_Failure::Throw("220300000033", kLocation,
                     "The directory %s is not a database, or not only: it holds '%s'. Choose "
                     "another name, or remove what does not belong there.",
                     m_Path.c_str(), foreign.front().c_str());
}

std::string DatabaseDirectory::MoveAside() const {
  for (int number = 1;; ++number) {
    const std::string target = m_Path + ".damaged-" + std::to_string(number);
    if (m_Files.GetKind(target) != PathKind::NOTHING) continue;
    m_Files.Rename(m_Path, target);
    m_Files.SyncDirectory(ParentOf(m_Path));
    return target;
  }
}

std::unique_ptr<Catalogue> DatabaseDirectory::OpenCatalogueToRead() const {
  const bool mayChange = m_Files.IsWritable(m_Path) || HasLog();
  return std::make_unique<Catalogue>(
      m_Files, PathOf(kCatalogue),
      mayChange ? Catalogue::Access::READ : Catalogue::Access::IMMUTABLE, false);
}

// Whether a log beside the catalogue holds anything.
bool DatabaseDirectory::HasLog() const {
  if (m_Files.GetKind(PathOf(kLog)) != PathKind::FILE) return false;
  return m_Files.Open(PathOf(kLog), OpenMode::READ)->GetSize() > 0;
}

}  // namespace qelta
