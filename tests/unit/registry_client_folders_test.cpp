#include "rounds/client_folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "registry_world.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

TEST(ClientFolders, AreCreatedAndCountedUpToAFailure) {
  test::RegistryWorld world;
  const test::TempFolder folder;
  const AppInfo app(folder.path());
  world.form.Txt_Folder.SetText("data");
  folder.Write("data/taken", "a file");
  for (const char* to : {"F1", "", "north\\F2", "F1", "taken", "F3"})
    world.registry.Clients.Append({"", 1, to, "", ""});
  CreateLocalFolders(world.registry, FileNames(world.form, world.registry, app), world.messages);
  EXPECT_TRUE(fs::is_directory(folder.Name("data/north/F2")));
  EXPECT_FALSE(fs::exists(folder.Name("data/F3")));
  const std::vector<std::string> shown = world.dialogs.Texts();
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_NE(shown[0].find("data/taken"), std::string::npos) << shown[0];
  EXPECT_EQ(shown[1], "2 folder(s) created");
}

}  // namespace
}  // namespace corvane
