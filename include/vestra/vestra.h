#ifndef VESTRA_VESTRA_H
#define VESTRA_VESTRA_H

#include <cstdint>
#include <string>

/// Marks what the shared library offers to its hosts. A tool that reads the headers and
/// does not know attributes defines it before, as nothing.
#ifndef VESTRA_EXPORT
#define VESTRA_EXPORT __attribute__((visibility("default")))
#endif

namespace Oza {

/// Usage statistics of one host process.
///
/// While it runs, the host hands over data items with `add`; at its end it asks
/// for the report with `send`. The process has one set of items, which is never
/// emptied: what was added before one `send` is still there at the next.
///
/// All strings are byte strings, copied before the call returns and written
/// without quoting or escaping. Call from one thread at a time; nothing but the
/// first use in a process is guarded against concurrent calls.
///
/// What the library holds is destroyed at the process's exit. A static object that the
/// host made before its first call is destroyed later still: from there, `add` does
/// nothing, `send` and `internal` are false and `getLogFileName` is empty.
class Vestra {
 public:
  /// What an item is about: its place in the report.
  enum SectionType : std::uint32_t {
    /// Facts of the project and the installation. Of these, the report keeps
    /// fifteen fixed keys, compared without regard to letter case.
    SOFTWARE_VERSION_AND_TARGET_DEVICE = 0,
    /// The machine and the user's surroundings.
    USER_ENVIRONMENT = 1,
    /// Command-line options that the simulator was started with.
    KELVO_COMMAND_LINE_OPTIONS = 2,
    /// What the simulator was used for.
    KELVO_USAGE = 3,
    /// Command-line options that the lab tool was started with.
    TAVLO_COMMAND_LINE_OPTIONS = 4,
    /// What the lab tool was used for.
    TAVLO_USAGE = 5
  };

  /// Whose report it is. Every value other than the first two is the lab tool.
  enum ProductType : std::uint32_t {
    /// The simulator.
    KELVO = 0,
    /// The simulator, with a once-a-day limit of its own.
    KELVO_ALT = 1,
    /// The lab tool.
    TAVLO = 2
  };

  /// Files one item. The same key added twice gives two items.
  ///
  /// @param key      Not null. Should hold no white space: it reaches the main
  ///                 design tool's script as a bare word.
  /// @param value    Not null. Should hold no double quote, dollar sign, square
  ///                 bracket or backslash: the script interpreter reads those.
  /// @param section  One of the six sections; no other value may be passed.
  /// @throws std::logic_error "basic_string::_M_construct null not valid" when
  ///         the key or the value is null; nothing has been added then.
  VESTRA_EXPORT static void add(const char* key, const char* value, SectionType section);

  /// Writes the report of everything added so far into `projectDir`/vestra/ and,
  /// at most once in 86400 seconds for each project and product slot, runs the
  /// main design tool on it through the shell and waits for its end. Hosts that report
  /// at once wait for each other, but not for more than 250 ms, and not on a network file
  /// system: there a report can go more than once.
  ///
  /// Hosts may send at one moment in one project. They wait for each other for 250 ms
  /// at most, in all. Where another process is stopped for longer while it counts, and
  /// on network file systems, which give no lock that answers at once, a report can be
  /// sent twice.
  ///
  /// Reads and writes the per-user settings file
  /// `$HOME`/.Calvix/Common/2018.2/vestra (below /tmp where HOME is unset or
  /// empty) and, in `projectDir`/vestra/, the project identity file, the rules
  /// file, the script and the lab tool's log. Opens the support library
  /// libqvzcommonvestrasupport.so by the loader's search path. Reads the
  /// environment variables HOME, CALVIX_VESTRA_DEBUG_EXT (non-empty: the script
  /// and the rules file are kept) and CALVIX_VESTRA_INTERNAL_TRANSMIT (see
  /// `internal`).
  ///
  /// @param projectDir  Not null. A relative directory is resolved against the
  ///                    current one. It reaches the shell unquoted, so it must
  ///                    not hold blanks or shell characters.
  /// @return Whether the report was due and the main design tool was started;
  ///         its exit status does not matter. False as well when the report
  ///         could not be prepared: no usable project identity file, or no
  ///         support library.
  /// @throws std::logic_error "basic_string::_M_construct null not valid" when
  ///         the project directory is null or the support library answers null.
  /// @throws std::logic_error naming the entry point that the support library
  ///         lacks.
  /// @throws boost::filesystem::filesystem_error (a std::runtime_error) when the
  ///         current directory is gone or an old file cannot be removed.
  /// @throws boost::uuids::entropy_error (a std::runtime_error) when the system
  ///         gives no random bytes for a new installation identifier.
  VESTRA_EXPORT static bool send(const char* projectDir, ProductType product);

  /// Whether this machine belongs to the maker's own network, so that reports
  /// from it are marked as tests. Found out once from the machine's domain name
  /// or, where it has none, from /etc/resolv.conf. The environment variable
  /// CALVIX_VESTRA_INTERNAL_TRANSMIT, non-empty at any call, makes an internal
  /// machine count as external from then on.
  VESTRA_EXPORT static bool internal();

  /// The file that the lab tool's run of the main design tool writes its output
  /// to: the absolute project directory of the last `send` followed by
  /// "/vestra/tavlo_vestra.log". The name is the lab tool's for every product.
  VESTRA_EXPORT static std::string getLogFileName();
};

// The words that an item's script line is made of. They are writable pointers,
// read anew for each line.

/// One line feed.
VESTRA_EXPORT extern const char* NEW_LINE;
/// One blank.
VESTRA_EXPORT extern const char* SPACE;
/// "-context"
VESTRA_EXPORT extern const char* PARAM_CONTEXT;
/// "-value"
VESTRA_EXPORT extern const char* PARAM_VALUE;
/// "-key"
VESTRA_EXPORT extern const char* PARAM_KEY;
/// "-client"
VESTRA_EXPORT extern const char* PARAM_CLIENT;
/// "vestra_add_data"
VESTRA_EXPORT extern const char* TYPE_ADD_DATA;

}  // namespace Oza

#endif
