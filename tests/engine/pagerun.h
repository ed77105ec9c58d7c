#pragma once

#include "tests/app/guides.h"
#include "tests/engine/fioserver.h"
#include "tests/engine/seriesrun.h"

#include <memory>
#include <vector>

namespace test {

/// Names this machine pc07, as the pages do, in a namespace of its own. Must come right after
/// allowMounts(); leaves the program out if that is not permitted.
void useNameOfThePages();

/// Runs on fio what a page shows: makes its files and gives its commands to dpc. The page's folders
/// /mnt, /share and /tmp lie below a root, or are those of this machine if the root is empty.
class PageRun
{
public:
    explicit PageRun(QString root);

    QString placed(QString text) const; ///< the page's paths as those below the root
    QString shown(QString text) const;  ///< the other way around

    /// Makes a file of the page. Files of 100 MiB get another size if `fileSizeKib` is not empty.
    void makeFile(const GuidePart& listing, const QByteArray& fileSizeKib = {}) const;
    /// Runs a dpc command of the page.
    Printed run(const QString& command) const;
    /// Starts a server of fio at each address that a list of machines names. They have all folders
    /// of this machine in common, but for `apart`, which is another one for each.
    void startServers(const QString& machines, const QString& apart);

private:
    QString m_root;
    std::vector<std::unique_ptr<FioServer>> m_servers;
};

} // namespace test
