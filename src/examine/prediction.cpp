#include "examine/prediction.h"

#include "examine/codetest.h"

namespace sealwright::examine {

namespace {

class Recorder : public ScanWatcher {
public:
    Recorder(const QString &fileTool, Prediction &prediction)
        : m_test(fileTool)
        , m_prediction(prediction)
    {
    }

    bool isCode(const QString &file) override { return m_test.isCode(file); }
    void signable(const QString &item) override { signableSet.append(item); }
    void mainExecutable(const QString &file) override { m_prediction.mainExecutables.insert(file); }
    void passedOver(const QString &item, PassedOver reason) override
    {
        if (reason != PassedOver::notExecutable && reason != PassedOver::noCode)
            m_prediction.passedOver.insert(item, reason);
    }

    OrderedPathSet signableSet;

private:
    const CodeTest m_test;
    Prediction &m_prediction;
};

bool hasMainFile(ItemKind kind)
{
    return kind == ItemKind::app || kind == ItemKind::plugin || kind == ItemKind::fmplugin;
}

/// As a run does it: the last member is left to the step that signs the item, whatever it is.
void leaveMainToItsStep(const QString &item, Prediction &prediction)
{
    if (prediction.order.isEmpty())
        return;
    const QString last = prediction.order.takeLast();
    if (last != item)
        prediction.droppedMember = last;
}

Prediction predictOrder(const QString &item, ItemKind kind, const Choices &choices,
                        const platform::FileService &files)
{
    Prediction prediction;
    if (kind == ItemKind::package)
        return prediction;
    if (kind == ItemKind::diskImage) {
        prediction.order.append(item);
        return prediction;
    }
    Recorder recorder(choices.fileTool, prediction);
    const QStringList passedOver = pathsToPassOver(item, choices.skipPaths);
    ScanDecisions(files, passedOver, recorder).parseDirectory(item);
    prediction.order = signingOrder(recorder.signableSet, prediction.mainExecutables);
    if (!hasMainFile(kind))
        return prediction;
    if (choices.signsMainItemOnly) {
        prediction.unsignedMembers = prediction.order;
        prediction.unsignedMembers.removeAll(item);
        prediction.order.clear();
    } else {
        leaveMainToItsStep(item, prediction);
    }
    prediction.order.append(item);
    return prediction;
}

/// As codesign walks with --deep.
void addNested(Prediction &prediction)
{
    QStringList waiting;
    for (const auto &[path, read] : prediction.bundles)
        waiting.append(path);
    while (!waiting.isEmpty()) {
        const QStringList nested = nestedCodeOf(prediction.bundles.at(waiting.takeLast()));
        for (const QString &path : nested)
            prediction.signedWithParents.insert(path);
        for (const auto &[path, read] : readBundles(nested)) {
            if (read.bundle)
                prediction.signedWithParents.insert(read.bundle->base); // of a framework
            if (prediction.bundles.emplace(path, read).second)
                waiting.append(path);
        }
    }
}

} // namespace

Prediction predict(const QString &item, ItemKind kind, const Choices &choices,
                   const platform::FileService &files)
{
    Prediction prediction = predictOrder(item, kind, choices, files);
    if (kind == ItemKind::diskImage)
        return prediction;
    prediction.bundles = readBundles(prediction.order);
    if (choices.signsDeep)
        addNested(prediction);
    return prediction;
}

} // namespace sealwright::examine
