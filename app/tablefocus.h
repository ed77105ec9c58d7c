#pragma once

class QTableWidget;

/// Makes a table a stop for the Tab key like any other: coming to it makes no cell current, which
/// would load that row over what is being typed, and a frame shows that it has the focus, rows or
/// not. Arrow keys choose a row; the next Tab leaves the table.
void makeTabStop(QTableWidget& table);
