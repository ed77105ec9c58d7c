#pragma once

#include "model/testtask.h"

#include <QList>

/// The tasks and markers of a series, in the order of the table and of the files.
using TaskList = QList<TestTask>;
