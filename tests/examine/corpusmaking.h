#pragma once

#include "examine/corpus.h"

/// Collects the items of the corpus.
class Corpus {
public:
    QList<CorpusItem> items;

    void add(const QString &name, std::function<void(ItemMaker &)> make, const QStringList &errors = {},
             const QStringList &warnings = {});
    /// The same for code of each architecture.
    void forEach(const QString &name, const std::function<void(ItemMaker &, const QString &)> &make,
                 const QStringList &errors = {});
};

/// Packages, disk images and what lies in them.
void addPackages(Corpus &corpus);
void addImages(Corpus &corpus);
