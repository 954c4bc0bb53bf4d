#include "plugin/PanZoomModel.h"

#include "plugin/PanZoomInstance.h"
#include "plugin/update_params.h"

namespace kelto {

bool PanZoomModel::DescribeEffect() {
  SetType(0);
  SetName("Kelto Pan & Zoom");
  SetPluginVersion(3.0f);
  SetVendor("Kelto");
  SetCategory("Image");
  return true;
}

hfxInstance_v1* PanZoomModel::CreateInstance() {
  // A constructor that runs out of memory must not throw into the host.
  try {
    return new PanZoomInstance;
  } catch (...) {
    return nullptr;
  }
}

bool PanZoomModel::DeclareConnections() {
  AddFormat(hfxColorspaceYCbCr, 8, nullptr, hfxImgFormatYCbYCr);
  AddFormat(hfxColorspaceRGB, 8, nullptr, hfxImgFormatBGRA);
  AddInput(0, "Input1", "input1", 0);
  AddOutput(0, "Output", "output", 0);
  SetUpdateParamsCallback(UpdateParams);
  return true;
}

bool PanZoomModel::QueryCapability(int32_t) { return true; }

}  // namespace kelto
