#ifndef VESTRA_DATA_ITEM_RENDERER_H
#define VESTRA_DATA_ITEM_RENDERER_H

#include <cstddef>
#include <string>

#include <vestra/vestra_data.h>

namespace Oza {

/// Writes items in one of their textual forms: as script lines or as checksum
/// segments. What surrounds the key and the value is the same for all items of one
/// context, so that it is put together once and not for each of them.
class ItemRenderer {
 public:
  /// For script lines of items of this client and context. Reads the exported text
  /// constants.
  static ItemRenderer forScript(const std::string& client, const std::string& formattedContext);

  /// For checksum segments.
  static ItemRenderer forChecksum(const std::string& client, const std::string& crcContext);

  /// One item's text.
  std::string render(VestraAddData& item) const;

  /// The texts of a context's children, in order. Its own items are written here; any
  /// other node, of a host's own class perhaps, renders itself.
  std::string renderChildren(VestraParentData& context) const;

 private:
  enum class Form { SCRIPT, CHECKSUM };

  explicit ItemRenderer(Form textForm) : form(textForm) {}

  std::size_t sizeOf(VestraAddData& item) const;
  std::size_t sizeOfItemsIn(VestraParentData& context) const;
  void append(VestraAddData& item, std::string& text) const;
  std::string renderForeign(VestraDataInterface& node) const;

  Form form;
  std::string beforeKey;
  std::string betweenKeyAndValue;
  std::string afterValue;
};

}  // namespace Oza

#endif
