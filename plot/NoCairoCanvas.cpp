#include <FED_Failure.h>

#include "CairoCanvas.h"

namespace qelta {

bool HasCairo() { return false; }

std::unique_ptr<Canvas> MakeCairoCanvas(PictureFormat /*format*/, double /*width*/,
                                        double /*height*/, const std::string& /*title*/) {
  FED_Failure::Throw("310000000963", "|%P|QeltaPlot|CairoCanvas",
                     "This build draws neither PNG nor PDF, as the library cairo was not there; "
                     "take SVG.");
}

}  // namespace qelta
