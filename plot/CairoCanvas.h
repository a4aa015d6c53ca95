#pragma once

#include <memory>
#include <string>

#include "Canvas.h"

namespace qelta {

enum class PictureFormat { Svg, Png, Pdf };

/// Draws PNG, where a unit is a pixel, and PDF, where it is a point, with the library cairo. A
/// build may be without it.
std::unique_ptr<Canvas> MakeCairoCanvas(PictureFormat format, double width, double height,
                                        const std::string& title);

bool HasCairo();

}  // namespace qelta
