#pragma once

#include "check/rules.h"

#include <QString>

#include <string>

/// Something to be said about one place of a series.
struct Finding
{
    Rule rule;
    int file; ///< its place among the files of the series, for sorting
    QString path;
    int line;   ///< from 1
    int column; ///< from 1
    std::string text;
};
