// What a text has to be for the field that it stands in, wherever it is entered.
//
// Each rule returns an empty text when all is well, else a short sentence that says what is wrong and what is accepted.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "lang/phrases.h"
#include "state/app_info.h"

namespace corvane {

/// The limits of the radio address of a unit or relay.
inline constexpr double kLowestID = INT32_MIN;
inline constexpr double kHighestID = INT32_MAX;

/// Of an interval with a colon.
[[nodiscard]] std::string HoursProblem(std::string_view as_Text, const Phrases& av_Phrases = {});
[[nodiscard]] std::string IntervalProblem(std::string_view as_Text, const Phrases& av_Phrases = {});
/// The limits are whole numbers.
[[nodiscard]] std::string WholeNumberProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest,
                                             const Phrases& av_Phrases = {});
[[nodiscard]] std::string DecimalProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest,
                                         const Phrases& av_Phrases = {});
[[nodiscard]] std::string DepthsProblem(std::string_view as_Text, const Phrases& av_Phrases = {});
/// Depths as the settings hold them, "10;20;7.5", also where they were parted by "/", blanks, or commas that are no
/// decimal ones: one comma alone could be. A text that is none of these comes back as it is.
[[nodiscard]] std::string PlainDepths(std::string_view as_Text);
/// A client's name as that of its folder: what cannot stand in one becomes "_", and where it is taken it gets a number.
[[nodiscard]] std::string ClientFolderFor(std::string_view as_Client,
                                          const std::function<bool(const std::string& folder)>& av_IsTaken);
/// What two units have in common that would write one raw file: their clients' folder, empty without a client, and ID.
[[nodiscard]] std::string RawFileKey(std::string_view as_Folder, std::string_view as_ID);
[[nodiscard]] std::string ServerProblem(std::string_view as_Text, const Phrases& av_Phrases = {});
/// A file that has to be there.
[[nodiscard]] std::string FileProblem(std::string_view as_Text, const AppInfo& av_App, const Phrases& av_Phrases = {});
/// A folder that is there, or can be created in one that is; `as_Path` is its full path.
[[nodiscard]] std::string NewFolderProblem(const std::string& as_Path, const Phrases& av_Phrases = {});
/// Why no file can be put there under that full name, as the rest of a sentence; one that is there may be replaced.
[[nodiscard]] std::string NewFileProblem(const std::string& as_Path);
/// Whether a folder stands there, by its full path.
[[nodiscard]] bool IsFolder(const std::string& as_Path);

/// What these texts are made of.
[[nodiscard]] std::vector<Phrase> FieldRulePhrases();

}  // namespace corvane
