#include "registry/client_folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "registry_world.h"
#include "support/temp_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

struct ClientFoldersTest : testing::Test, test::RegistryWorld {
  /// Runs the command for clients with these folders; what was shown.
  Texts Create(const Texts& folders) {
    registry.Clients = {};
    for (const std::string& client_folder : folders) registry.Clients.Append({"C", 1, client_folder, "", ""});
    dialogs.boxes.clear();
    form.Txt_Folder.SetText("data");
    CreateLocalFolders(registry, FileNames(form, registry, app), messages);
    return dialogs.Texts();
  }

  test::TempFolder folder;
  AppInfo app{folder.path()};
};

TEST_F(ClientFoldersTest, MissingOnesAreCreatedAndCounted) {
  EXPECT_EQ(Create({"F1", "north\\F2", "F1"}), Texts({"2 folder(s) created"}));
  EXPECT_TRUE(fs::is_directory(folder.Name("data/north/F2")));
  EXPECT_EQ(Create({"F1", "", "north/F2"}), Texts({"0 folder(s) created"}));
}

TEST_F(ClientFoldersTest, AFailureEndsTheCommandAndKeepsTheCount) {
  folder.Write("data/taken", "a file");
  const Texts shown = Create({"F1", "taken", "F3"});
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_NE(shown[0].find("data/taken"), std::string::npos) << shown[0];
  EXPECT_EQ(shown[1], "1 folder(s) created");
  EXPECT_FALSE(fs::exists(folder.Name("data/F3")));
}

}  // namespace
}  // namespace corvane
