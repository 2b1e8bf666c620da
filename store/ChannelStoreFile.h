#pragma once

#include <string>
#include <string_view>

namespace qf {

class ChannelStore;
class XmlDocument;

// The channel store file, "QFChannels.opml" in the data folder: the store's options in `head`,
// the categories and their channels as outlines in `body`.

// The store file's path as the store keeps it: worked out from the settings' storage volume on
// the first request and kept until the store is closed. Empty when the volume is not there.
const std::u16string& KeptStorePath(ChannelStore& store);

// Marks the store loaded and reads the file into it. Fails when the file is missing, cannot be
// parsed or is not OPML; a file that exists but fails is remembered, so that the next save of
// the store to that path moves it aside instead of overwriting it.
bool LoadStore(ChannelStore& store, std::u16string_view path);

// Reads a parsed OPML document into the store: the options of its head, and its categories and
// channels, nested groups flattened into their top category and channels outside any category
// into "Default". Fails only when the top-level element is not `opml`. OPML import reads through
// this; unlike loading the store file, it leaves ids that channels share as they are (merging
// the channels into the store gives them ids of their own).
bool ReadStoreDocument(const XmlDocument& document, ChannelStore& store);

// Writes the whole store to `path`, atomically. When that path holds a store file that could not
// be read, it is first moved aside (below); the save fails rather than overwrite it. A readable
// file that is saved over for the first time in a day is first kept as that day's backup.
bool SaveStore(ChannelStore& store, std::u16string_view path, std::u16string* notice = nullptr);

// When the store could not read the file at `path`, renames it to "<path>.broken" (or
// ".broken.1", ".broken.2", ... when taken) and `notice` receives a sentence saying so. False
// when the file is still there.
bool MoveUnreadableStoreAside(ChannelStore& store, std::u16string_view path,
                              std::u16string* notice);

// Writes the read states of modified channels into their cached feeds, then saves the store to
// its kept path (used as kept, never worked out anew).
bool SaveAll(ChannelStore& store, std::u16string* notice = nullptr);

// Saves everything, then empties the store: its categories are deleted, the loaded flag cleared
// and the kept path forgotten. Answers whether the save succeeded.
bool CloseStore(ChannelStore& store, std::u16string* notice = nullptr);

// "Failed to open Channels file '<path>'.", what the user is told when a load fails.
std::u16string OpenStoreFailedText(std::u16string_view path);

} // namespace qf
