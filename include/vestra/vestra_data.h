#ifndef VESTRA_VESTRA_DATA_H
#define VESTRA_VESTRA_DATA_H

#include <string>
#include <vector>

#include <vestra/vestra.h>

namespace Oza {

struct NodeAccess;

/// A node of the report's tree: a context, or an item filed under one.
///
/// The order of the virtual operations and the layout of the classes below are
/// part of the binary interface. Nodes are deleted through this base.
class VESTRA_EXPORT VestraDataInterface {
 public:
  /// The node as `vestra_add_data` lines of the report script.
  virtual std::string toTclString() = 0;

  /// The node's contribution to the text that the report's checksum is made of.
  virtual std::string toCRCSegment() = 0;

  /// The client that the node belongs to: "project", "kelvo" or "tavlo".
  virtual std::string getClient() = 0;

  virtual ~VestraDataInterface();
};

/// A context: one section of the report. Owns the nodes filed under it.
class VESTRA_EXPORT VestraParentData : public VestraDataInterface {
 public:
  /// @param context       The section's path. A backslash is written twice, since
  ///                      the script and the rules file read two as one.
  /// @param client        The client whose section it is.
  /// @param userEnvStyle  Whether the HTML report shows it in "UserEnvStyle";
  ///                      otherwise in "FennoxStatsStyle".
  VestraParentData(std::string context, std::string client, bool userEnvStyle);
  VestraParentData(const VestraParentData&) = delete;
  VestraParentData& operator=(const VestraParentData&) = delete;

  /// Deletes every child that is not null, in the order in which they were added.
  ~VestraParentData() override;

  /// The lines of all children, in order; empty without children.
  std::string toTclString() override;

  /// The checksum segments of all children, in order; empty without children.
  std::string toCRCSegment() override;

  std::string getClient() override;

  /// Sets a suffix of the context's path; an empty one removes it. The library
  /// itself sets none.
  void setVestraId(std::string id);

  /// The context's path, followed by "/" and the suffix when one is set.
  std::string getContext();

  /// The path as the report script writes it: that of `getContext`.
  std::string getFormattedContext();

  /// The path as the rules file writes it: that of `getFormattedContext`.
  std::string getWdmContext();

  /// The path as the script interpreter reads it, each pair of backslashes as
  /// one: the form that the checksum is made of.
  std::string getCRCContext();

  /// One block of a rules file that maps this context to a section of its own
  /// name. Ends without a line end or a comma; the caller adds them between blocks.
  std::string getWdmString();

  /// Appends a node and takes ownership of it. Neither null nor a repeated node
  /// is rejected, but a node must be added only once.
  void addChild(VestraDataInterface* child);

 private:
  friend struct NodeAccess;

  std::string context;
  std::string client;
  bool userEnvStyle;
  std::string vestraId;
  std::vector<VestraDataInterface*> children;
};

/// One data item: a key and its value.
class VESTRA_EXPORT VestraAddData : public VestraDataInterface {
 public:
  /// Makes an item of `parent`, which must outlive it, without filing it there:
  /// that is `VestraParentData::addChild`'s work.
  VestraAddData(std::string key, std::string value, VestraParentData* parent);
  VestraAddData(const VestraAddData&) = delete;
  VestraAddData& operator=(const VestraAddData&) = delete;
  ~VestraAddData() override;

  /// One `vestra_add_data` command, ended by a line feed. The client and the key
  /// stand bare, the value and the context between double quotes, and none of
  /// them is escaped.
  std::string toTclString() override;

  /// Key, value, client and context path, with nothing between them.
  std::string toCRCSegment() override;

  /// The client of the parent.
  std::string getClient() override;

 private:
  friend struct NodeAccess;

  std::string key;
  std::string value;
  VestraParentData* parent;
};

/// The library's own access to the fields of nodes. Not for hosts.
struct NodeAccess {
  static std::vector<VestraDataInterface*>& children(VestraParentData& context) { return context.children; }
  static std::string& key(VestraAddData& item) { return item.key; }
  static const std::string& value(const VestraAddData& item) { return item.value; }
  static const VestraParentData* parent(const VestraAddData& item) { return item.parent; }
};

/// Orders items by key: byte by byte, the shorter first on a tie. Both nodes must
/// be items.
struct key_compare {
  /// Whether the key of `a` comes before that of `b`.
  bool operator()(VestraDataInterface* a, VestraDataInterface* b) const {
    return NodeAccess::key(static_cast<VestraAddData&>(*a)) <
           NodeAccess::key(static_cast<VestraAddData&>(*b));
  }
};

}  // namespace Oza

#endif
