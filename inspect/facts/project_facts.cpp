#include "facts/project_facts.h"

#include <sys/statvfs.h>

#include <cerrno>
#include <stdexcept>

#include <boost/filesystem/operations.hpp>

#include "facts/user_facts.h"
#include "handler/product_profile.h"

namespace vestra::inspect {
namespace {

/// Reads a line alone, with blank ones before it for the fields that it is not about.
bool isReadable(const std::string& line, std::size_t number, bool& tooLarge) {
  Oza::ProjectIdentity identity;
  try {
    Oza::readProjectIdentity(std::string(number, '\n') + line + "\n", identity);
    return true;
  } catch (const std::logic_error& error) {
    tooLarge = dynamic_cast<const std::out_of_range*>(&error) != nullptr;
    return false;
  }
}

std::optional<NumberFault> faultIn(const std::string& text) {
  const std::vector<std::string> lines = linesOf(text);
  for (std::size_t i = 0; i < lines.size() && i < 4; ++i) {
    bool tooLarge = false;
    if (!isReadable(lines[i], i, tooLarge)) {
      return NumberFault{i + 1, tooLarge};
    }
  }
  return std::nullopt;
}

IdentityState stateOfText(ProjectFacts& project) {
  project.fault = faultIn(*project.identityFile.text);
  if (project.fault) {
    return IdentityState::corrupt;
  }
  Oza::readProjectIdentity(*project.identityFile.text, project.identity);
  return IdentityState::usable;
}

IdentityState stateOf(ProjectFacts& project) {
  const FileSnapshot& file = project.identityFile;
  if (file.kind == FileKind::missing) {
    const bool canBeMade =
        canHoldFiles(project.vestra.path, project.obstacle) && (!file.link || canCreateTarget(file));
    return canBeMade ? IdentityState::fresh : IdentityState::unusable;
  }
  if (file.kind == FileKind::device && file.writable) {
    return IdentityState::unreadable;
  }
  // Another process holds a lease, and may give it up in time.
  const bool isLeased = file.readError == EAGAIN;
  if (isLeased || (file.kind == FileKind::unknown && file.error != ELOOP && file.error != EACCES)) {
    return IdentityState::unknown;
  }
  if (!file.isRegular() || !file.writable || (!file.text && !file.isUnreadable())) {
    return IdentityState::unusable;
  }
  return file.text ? stateOfText(project) : IdentityState::unreadable;
}

/// Why there can be no identity file where there is none.
std::string whyNotCreated(const ProjectFacts& project) {
  const std::string vestra = project.directory + "/vestra";
  struct statvfs system {};
  if (lookAt(vestra).exists() && lookAt(vestra).kind != FileKind::directory) {
    return "project.vestra_is_file";
  }
  if (statvfs(project.obstacle.c_str(), &system) == 0 && (system.f_flag & ST_RDONLY) != 0) {
    return "project.readonly";
  }
  return mayChangeDirectory(project.obstacle) ? "project.full" : "project.unwritable";
}

void addFile(const std::string& role, const Oza::ProductProfile& product, const char* name,
             ProjectFacts& project) {
  FileSnapshot file = lookAt(project.pathOf(name));
  if (file.exists() || file.link) {
    project.files.push_back({role, product.name, std::move(file)});
  }
}

void addFiles(Product product, ProjectFacts& project) {
  const Oza::ProductProfile& profile = Oza::profileOf(product);
  addFile("script", profile, profile.script, project);
  addFile("rules", profile, profile.rules, project);
  addFile("xml", profile, profile.xml, project);
  addFile("html", profile, profile.html, project);
  if (product == Oza::Vestra::TAVLO) {
    addFile("log", profile, Oza::LOG_FILE, project);
  }
}

bool hasTraceOf(const std::string& product, const ProjectFacts& project) {
  for (const ReportFile& file : project.files) {
    if (file.product == product) {
      return true;
    }
  }
  return false;
}

}  // namespace

const ReportFile* ProjectFacts::find(const std::string& role, const std::string& product) const {
  for (const ReportFile& file : files) {
    if (file.role == role && file.product == product) {
      return &file;
    }
  }
  return nullptr;
}

std::string reasonOf(const ProjectFacts& project) {
  const FileSnapshot& file = project.identityFile;
  if (project.state == IdentityState::unknown) {
    return "identity.unknown";
  }
  if (project.state == IdentityState::corrupt) {
    return "identity.number";
  }
  if (project.state != IdentityState::unusable) {
    return "";
  }
  if (file.kind == FileKind::missing) {
    return file.link ? "identity.link" : whyNotCreated(project);
  }
  if (file.kind == FileKind::unknown) {
    return file.error == ELOOP ? "identity.loop" : "identity.unwritable";
  }
  return !file.isRegular() ? "identity.special"
         : !file.writable  ? "identity.unwritable"
                           : "identity.read_error";
}

ProjectFacts lookAtProject(const HostContext& context, const std::string& directory) {
  ProjectFacts project;
  project.directory = boost::filesystem::absolute(directory, context.currentDirectory).string();
  project.root = lookAt(project.directory);
  project.vestra = lookAt(Oza::vestraDirectoryOf(project.directory));
  project.identityFile = readFileAt(project.pathOf(Oza::PROJECT_IDENTITY_FILE), LARGEST_RECORD);
  project.state = stateOf(project);
  addFiles(Oza::Vestra::KELVO, project);
  addFiles(Oza::Vestra::TAVLO, project);
  return project;
}

std::string nearestProject(const std::string& directory) {
  for (boost::filesystem::path each = directory; !each.empty(); each = each.parent_path()) {
    if (lookAt(Oza::vestraDirectoryOf(each.string()) + Oza::PROJECT_IDENTITY_FILE).exists()) {
      return each.string();
    }
  }
  return directory;
}

std::vector<Product> productsOf(const ProjectFacts& project) {
  std::vector<Product> products;
  if (hasTraceOf("KELVO", project)) {
    products.push_back(Oza::Vestra::KELVO);
  }
  if (project.identity.lastSendTimeType1 != 0) {
    products.push_back(Oza::Vestra::KELVO_ALT);
  }
  if (hasTraceOf("TAVLO", project)) {
    products.push_back(Oza::Vestra::TAVLO);
  }
  return products.empty() ? std::vector<Product>{Oza::Vestra::KELVO} : products;
}

}  // namespace vestra::inspect
