#pragma once

#include <string>
#include <vector>

#include "FED_OnfMetaData.h"

struct FED_OnfCategoryInfo {
  FED_OnfCategoryId category;
  std::string name;  ///< "nodal"
  int first;         ///< lowest number of the category's range
  int last;          ///< highest number of the category's range
};

/// The catalogue of block kinds, and the meta data of custom formats.
///
/// All operations are static and safe from several threads; the references they give stay valid
/// as long as the process. A number, category or format that is not known is a `FED_Failure`.
class QELTA_EXPORT FED_OnfInfoPool {
 public:
  static bool ExistsOnfBlock(int onf);

  static const FED_OnfMetaData& GetOnfInfo(FED_OnfId onf);

  /// The meta data of a custom record format: every id type is 15, every write-lookup flag false,
  /// the fields are named "FIELD_1", "FIELD_2" ...
  static const FED_OnfMetaData& FetchOnfInfo(const std::string& format);

  /// The numbers of a category in ascending order.
  static const std::vector<FED_OnfId>& GetOnfListForCategory(FED_OnfCategoryId category);

  /// Every number of the catalogue in ascending order.
  static const std::vector<FED_OnfId>& GetAllOnfIds();

  /// Every category in ascending order.
  static const std::vector<FED_OnfCategoryInfo>& GetAllCategories();
};
