#include "ui/new_usage_folder.h"

#include "config/mdlConfigs.h"
#include "platform/file_system.h"
#include "platform/folder_path.h"
#include "platform/mod_systemInfo.h"

namespace ui {

NewUsageFolder btnCreateNewUsageFolder_Click(const std::string& parent, const std::string& name) {
  if (name.empty()) {
    mdlConfigs::TellUser("Please enter a name for the new folder");
    return {};
  }
  const std::string path = platform::FolderInside(parent, name);
  const int error = platform::TheFileSystem().CreateFolder(path);
  if (error != 0) {
    mdlConfigs::TellUser("Failed to create '" + path + "'\n" + mod_systemInfo::GetErrorText(error));
    return {true, ""};
  }
  mdlConfigs::LogInformation(" : User created new usage folder: " + path);
  return {true, path};
}

}  // namespace ui
