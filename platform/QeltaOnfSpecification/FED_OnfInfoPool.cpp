#include "FED_OnfInfoPool.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <unordered_map>

#include "FED_Failure.h"
#include "FED_OnfCatalogue.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaOnfSpecification|FED_OnfInfoPool";

class Catalogue {
 public:
  // Never destroyed: blocks of static databases may ask until the very end of the process.
  static const Catalogue& Get() {
    static const Catalogue* const catalogue = new Catalogue;
    return *catalogue;
  }

  const FED_OnfMetaData* Find(int onf) const {
    const auto found = m_ByNumber.find(onf);
    return found == m_ByNumber.end() ? nullptr : found->second;
  }
  const std::vector<FED_OnfId>* FindCategory(int category) const {
    const auto found = m_ByCategory.find(category);
    return found == m_ByCategory.end() ? nullptr : &found->second;
  }
  const std::vector<FED_OnfId>& Ids() const { return m_Ids; }
  const std::vector<FED_OnfCategoryInfo>& Categories() const { return m_Categories; }

 private:
  Catalogue() : m_Kinds(qelta::MakeOnfCatalogue()), m_Categories(qelta::MakeOnfCategories()) {
    for (const FED_OnfCategoryInfo& info : m_Categories) m_ByCategory[info.category];
    for (const FED_OnfMetaData& kind : m_Kinds) {
      m_ByNumber[kind.onfId] = &kind;
      m_ByCategory[kind.category].push_back(kind.onfId);
      m_Ids.push_back(kind.onfId);
    }
  }

  std::vector<FED_OnfMetaData> m_Kinds;
  std::vector<FED_OnfCategoryInfo> m_Categories;
  std::vector<FED_OnfId> m_Ids;
  std::unordered_map<int, const FED_OnfMetaData*> m_ByNumber;
  std::map<int, std::vector<FED_OnfId>> m_ByCategory;
};

struct CustomFormats {
  std::mutex mutex;
  std::map<std::string, FED_OnfMetaData> metaData;
};

CustomFormats& GetCustomFormats() {
  static CustomFormats* const formats = new CustomFormats;
  return *formats;
}

}  // namespace

bool FED_OnfInfoPool::ExistsOnfBlock(int onf) { return Catalogue::Get().Find(onf) != nullptr; }

const FED_OnfMetaData& FED_OnfInfoPool::GetOnfInfo(FED_OnfId onf) {
  if (const FED_OnfMetaData* info = Catalogue::Get().Find(onf)) return *info;
  FED_Failure::Throw("120000000001", kLocation,
                     "The catalogue has no block kind %d; ask ExistsOnfBlock before.",
                     static_cast<int>(onf));
}

const FED_OnfMetaData& FED_OnfInfoPool::FetchOnfInfo(const std::string& format) {
  CustomFormats& formats = GetCustomFormats();
  const std::lock_guard<std::mutex> lock(formats.mutex);
  const auto found = formats.metaData.find(format);
  if (found != formats.metaData.end()) return found->second;
  return formats.metaData.emplace(format, qelta::MakeCustomMetaData(format)).first->second;
}

const std::vector<FED_OnfId>& FED_OnfInfoPool::GetOnfListForCategory(FED_OnfCategoryId category) {
  if (const std::vector<FED_OnfId>* list = Catalogue::Get().FindCategory(category)) return *list;
  FED_Failure::Throw("120000000002", kLocation,
                     "The catalogue has no category %d; categories run from 1 to 6.",
                     static_cast<int>(category));
}

const std::vector<FED_OnfId>& FED_OnfInfoPool::GetAllOnfIds() { return Catalogue::Get().Ids(); }

const std::vector<FED_OnfCategoryInfo>& FED_OnfInfoPool::GetAllCategories() {
  return Catalogue::Get().Categories();
}
