#pragma once

#include <QString>
#include <QVariant>
#include <optional>

#include "core/model/Uuid.h"

namespace orvane::app {

// The item-data role under which views keep a row's record id.
inline constexpr int idRole = Qt::UserRole;

// Record ids carried in item data and combo boxes, as their canonical text.
inline QVariant idData(const Uuid& id) { return QString::fromStdString(id.text()); }
inline QVariant idData(const std::optional<Uuid>& id) { return id ? idData(*id) : QVariant(); }
inline std::optional<Uuid> idFrom(const QVariant& data) {
  if (!data.isValid() || data.isNull()) return std::nullopt;
  return Uuid::parse(data.toString().toStdString());
}

inline QString qText(const std::string& text) { return QString::fromStdString(text); }

}  // namespace orvane::app
