#include "core/reports/ReportBranding.h"

#include <nlohmann/json.hpp>

#include "core/backup/Base64.h"
#include "core/text/Text.h"

namespace orvane {

std::optional<std::string> ReportBranding::preparedByLine() const {
  std::string joined;
  for (const std::string& part : {text::trimmed(preparedBy), text::trimmed(organisation)}) {
    if (part.empty()) continue;
    if (!joined.empty()) joined += ", ";
    joined += part;
  }
  if (joined.empty()) return std::nullopt;
  return "Prepared by " + joined;
}

std::string ReportBranding::encoded() const {
  nlohmann::json record = {
      {"preparedBy", preparedBy}, {"organisation", organisation}, {"contact", contact}, {"logoPNG", nullptr}};
  if (logoPNG) record["logoPNG"] = Backup::base64::encode(*logoPNG);
  return record.dump();
}

ReportBranding ReportBranding::decoded(std::optional<std::string_view> record) {
  if (!record) return {};
  const nlohmann::json parsed = nlohmann::json::parse(*record, nullptr, false);
  if (parsed.is_discarded() || !parsed.is_object()) return {};
  ReportBranding branding;
  for (const auto& [key, field] :
       {std::pair{"preparedBy", &branding.preparedBy}, std::pair{"organisation", &branding.organisation},
        std::pair{"contact", &branding.contact}}) {
    const auto it = parsed.find(key);
    if (it == parsed.end()) continue;
    if (!it->is_string()) return {};
    *field = it->get<std::string>();
  }
  const auto logo = parsed.find("logoPNG");
  if (logo != parsed.end() && !logo->is_null()) {
    if (!logo->is_string()) return {};
    branding.logoPNG = Backup::base64::decode(logo->get<std::string>());
  }
  return branding;
}

}  // namespace orvane
