#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// Who prepared the reports, named in every page's footer. A user setting,
// kept as one encoded record under settingsKey.
struct ReportBranding {
  static constexpr std::string_view settingsKey = "reportBranding.v1";

  std::string preparedBy;
  std::string organisation;
  std::string contact;                 // shown on its own in the footer, never in preparedByLine
  std::optional<std::string> logoPNG;  // the PNG file's bytes

  // "Prepared by " and preparedBy and organisation, each trimmed of white
  // space and line breaks, the empty ones dropped, joined with ", "; absent
  // when both are empty.
  std::optional<std::string> preparedByLine() const;
  static std::string creditLine() { return "Created with Orvane"; }

  // A JSON object with exactly the keys preparedBy, organisation, contact and
  // logoPNG (base64 text, or null without a logo).
  std::string encoded() const;
  // The record encoded() writes. A missing or unreadable record, or one whose
  // fields are not of the expected kinds, gives empty texts and no logo; a
  // logo that is not valid base64 is dropped on its own.
  static ReportBranding decoded(std::optional<std::string_view> record);

  friend bool operator==(const ReportBranding&, const ReportBranding&) = default;
};

}  // namespace orvane
