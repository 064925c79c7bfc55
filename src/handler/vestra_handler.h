#ifndef VESTRA_HANDLER_VESTRA_HANDLER_H
#define VESTRA_HANDLER_VESTRA_HANDLER_H

#include <cstdint>
#include <string>
#include <vector>

#include <vestra/vestra.h>
#include <vestra/vestra_data.h>

namespace Oza {

class VestraProjectInfo;
struct CollectedText;
struct ProductProfile;

/// The report handler: holds the collected items, writes the report and runs the
/// main design tool on it.
///
/// It is never reset: items, project directory and product remain for the next
/// report. The files of a report are in the project directory's vestra/ directory;
/// paths are concatenated, and doubled slashes are kept.
class VestraHandler {
 public:
  /// Starts with the six contexts, all empty, for product KELVO and without a
  /// project directory.
  VestraHandler();
  VestraHandler(const VestraHandler&) = delete;
  VestraHandler& operator=(const VestraHandler&) = delete;
  /// Frees the identity record, then the contexts with their items. The support
  /// library stays open: only a run of the main design tool closes it.
  ~VestraHandler();

  // The collected items.

  /// Adds a new item to the context at position `section`, which must be one of the
  /// six: it is not checked.
  void addData(std::string key, std::string value, Vestra::SectionType section);
  /// Adds an existing node to that context, which takes ownership of it.
  void addData(VestraDataInterface* item, Vestra::SectionType section);
  /// Appends a context, which must be a `VestraParentData`, and takes ownership.
  void addData(VestraDataInterface* item);
  /// Whether the context at position `index`, 0 to 5, has no items.
  bool isParentEmpty(unsigned int index);
  /// Reduces section 0 to the fifteen facts of a project: see `orderProjectFacts`.
  void uniqueAndReorderData();

  // The project and the product.

  /// Stores the absolute form of the directory; a relative one is resolved against
  /// the current directory. Does not access the directory itself.
  /// @throws boost::filesystem::filesystem_error when getcwd(3) fails, even for an
  ///         absolute directory.
  void setProjectDirectory(std::string directory);
  void setProductType(Vestra::ProductType product) { productType = product; }
  Vestra::ProductType getProductType() { return productType; }
  /// Whether the product is the simulator: type 0 or 1.
  bool isKelvo() const;
  /// "KELVO" or "TAVLO"
  std::string getProductName() const;
  /// "kelvo" or "tavlo"
  std::string getProductNameL() const;
  /// File name of the report script.
  std::string getVestraCommandTcl() const;
  /// File name of the rules file.
  std::string getVestraWdm() const;
  /// File name of the XML report.
  std::string getVestraXml() const;
  /// File name of the HTML report.
  std::string getVestraHtml() const;
  /// Path of the lab tool's log, for every product.
  std::string getLogFileName() const;
  /// Deletes the previous log, for the lab tool, and returns the redirection into it
  /// for the command line's end. For the simulator, only returns the empty text.
  /// @throws boost::filesystem::filesystem_error when an existing log cannot be deleted.
  std::string getVestraMsgFilter() const;

  // The project's identity and the user's environment.

  /// Creates a new identity record for the project directory and loads or creates its
  /// file. To be called once the project directory is set and the host's items are added.
  /// @return Whether the record can be used.
  bool setupVestraInfo();
  /// Lower-cases keys of section 0 and returns the project identifier that the host
  /// added there as an item: see `hostProjectId`.
  std::string getOrbeloProjectId() const;
  /// Adds the environment data of the support library, "project_id" and
  /// "project_iteration", and calls `uniqueAndReorderData`. Requires the identity
  /// record and the open support library.
  /// @throws std::logic_error when the support library returns null or lacks the
  ///         entry point.
  void addUserEnvironmentData();

  // The report.

  /// Loads the identity, writes the rules file, opens the support library unless it
  /// is open, completes the items and writes the script.
  /// @return False when the identity cannot be used or the support library cannot
  ///         be opened; no script is written then. A failure to write the script is
  ///         not reported.
  /// @throws std::logic_error when the support library returns null or lacks an
  ///         entry point.
  bool prepareVestraData();
  /// Writes the rules file of the current product. A failure is not reported.
  void createSimWdm();
  /// CRC-32 of the bytes before the first NUL.
  std::uint32_t getCrc32(const std::string& text);
  /// Whether the machine belongs to the maker's own network; determined once. If
  /// CALVIX_VESTRA_INTERNAL_TRANSMIT is not empty at any call, false from then on.
  bool isInternal();
  /// Day of the year, year and hour of the local time: nine digits.
  std::string getTimeStampSeg();
  /// The support library's registration identifier.
  /// @throws std::logic_error when it is null or the entry point is missing.
  std::string getRegId();

  /// Counts the attempt and, when a report is due, runs the main design tool.
  /// Requires a prepared report.
  /// @return Whether the report was due.
  bool sendVestraData();
  /// Runs the main design tool on the script through the shell and waits for it,
  /// closes the support library, and removes script and rules file unless
  /// CALVIX_VESTRA_DEBUG_EXT is non-empty.
  /// @return Whether the shell exited with status 0.
  /// @throws std::logic_error when the support library returns no command.
  /// @throws boost::filesystem::filesystem_error when a file cannot be removed.
  bool execVestraData();

 private:
  /// Whether the machine belongs to the maker's network.
  enum class Site : std::uint32_t { EXTERNAL = 0, INTERNAL = 1, NOT_YET_DETERMINED = 0xFFFFFFFF };

  explicit VestraHandler(Vestra::ProductType product);

  VestraParentData& contextAt(unsigned int index) const;
  const ProductProfile& profile() const;
  std::string pathInVestraDirectory(const std::string& name) const;
  bool openSupportLibrary();
  void closeSupportLibrary();
  void writeScript();
  void composeScript(CollectedText& text);
  void removeReportFiles() const;

  VestraProjectInfo* projectInfo;
  std::vector<VestraDataInterface*> contexts;
  std::string projectDirectory;
  Vestra::ProductType productType;
  void* supportLibrary;
  Site site;
};

}  // namespace Oza

#endif
