#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "engine/CivilDate.h"

class QTableWidget;
class QTableWidgetItem;
class QWidget;

namespace orvane::app {

// The small read-only tables of the forecast log and accuracy page: they
// sit in one scrolling page, so each is as tall as its rows and never
// scrolls on its own.

// A table named `name` with `headers`, rows selected whole, cells read-only.
QTableWidget* forecastTable(const QString& name, const QStringList& headers, QWidget* parent);

// A read-only cell; numbers are right-aligned so their digits line up.
QTableWidgetItem* textCell(const QString& text);
QTableWidgetItem* numberCell(const QString& text);

// Sets the rows to `rows` and the height to fit them and the header.
void fitRows(QTableWidget* table, int rows);
// The height that fits the rows, the header and, when shown, the
// horizontal scroll bar.
void fitHeight(QTableWidget* table);

// "5 Mar 2026"; "" for none.
QString dayText(const std::optional<CivilDate>& day);
// A YYYY-MM-DD text as "5 Mar 2026"; text that is no day stays as it is.
QString dayText(const std::string& iso);
// A percentage with one decimal: "62.5%".
QString percentText(double pct);

}  // namespace orvane::app
