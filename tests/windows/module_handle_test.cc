// The module's handle, which dialogs are owned by.
#include <gtest/gtest.h>

#include "platform/win32.h"
#include "state/module.h"
#include "tests/frames/host.h"

// The module's own, linked into this test besides, so that it can be called for real reasons here.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved);

namespace kelto {
namespace {

HINSTANCE asked = nullptr;

BOOL WINAPI NoteOwner(OPENFILENAMEA* dialog) {
  asked = dialog->hInstance;
  return FALSE;
}

TEST(ModuleHandle, IsKeptOnAttachAndClearedOnDetach) {
  const HINSTANCE handle = GetModuleHandleA(nullptr);
  EXPECT_TRUE(DllMain(handle, DLL_PROCESS_ATTACH, nullptr));
  EXPECT_EQ(Module().handle, handle);
  EXPECT_TRUE(DllMain(handle, DLL_THREAD_ATTACH, nullptr));
  EXPECT_TRUE(DllMain(handle, DLL_THREAD_DETACH, nullptr));
  EXPECT_EQ(Module().handle, handle) << "threads come and go";
  EXPECT_TRUE(DllMain(handle, DLL_PROCESS_DETACH, nullptr));
  EXPECT_EQ(Module().handle, nullptr);
}

TEST(ModuleHandle, OfTheLoadedModuleOwnsItsDialogs) {
  win32().GetOpenFileNameA = NoteOwner;
  test::HostedEffect effect(64, 36);
  EXPECT_FALSE(effect.instance().ChooseImage());
  win32() = DefaultWin32Calls();
  ASSERT_NE(asked, nullptr);
  EXPECT_EQ(asked, GetModuleHandleA("KeltoPanAndZoom.hfx"));
}

}  // namespace
}  // namespace kelto
