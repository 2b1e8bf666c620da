#pragma once

#include <string>
#include <string_view>

namespace qf {

// Pictures named by stories are kept in a folder of the data folder, each under a name made from
// its address, so that a picture seen once is shown again without asking the network.
inline constexpr std::u16string_view kPictureFolderName = u"Images";

// True for an http or https address (the scheme compared ignoring case); no other kind of
// address is ever fetched for a story.
bool IsPictureAddress(std::u16string_view url);

// The file name a picture is kept under: "Pic" and the 16 hexadecimal digits of a 64-bit FNV-1a
// hash of the address's UTF-8 text. The same address always gives the same name.
std::u16string PictureFileName(std::u16string_view url);

// `dataFolder` + "/Images/" + PictureFileName(url).
std::u16string PicturePath(std::u16string_view dataFolder, std::u16string_view url);

} // namespace qf
