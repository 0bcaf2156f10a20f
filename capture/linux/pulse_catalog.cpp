#include "capture/linux/pulse_catalog.h"

#include "capture/linux/program_identity.h"

#include <algorithm>

namespace qn {

namespace {

constexpr qsizetype kLongestId = 1024;
constexpr qsizetype kLongestName = 200;

bool isControl(QChar character) {
    return character.category() == QChar::Other_Control;
}

bool isUsableId(const QString& id) {
    return !id.isEmpty() && id.size() <= kLongestId &&
           std::none_of(id.begin(), id.end(), isControl);
}

QString oneLine(QString name) {
    std::replace_if(name.begin(), name.end(), isControl, u' ');
    return name.simplified().left(kLongestName);
}

bool contains(const QList<SourceEntry>& entries, const QString& id) {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const SourceEntry& entry) { return entry.id == id; });
}

// The program's id; empty for this process and for an unknown program.
QString applicationOf(const ProgramFacts& program, const QString& ownProcessId) {
    return program.processId == ownProcessId ? QString() : programId(program);
}

} // namespace

Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId) {
    Catalog catalog;
    for (const DeviceFacts& sink : snapshot.sinks) {
        if (isUsableId(sink.name))
            catalog.outputs.append({sink.name, oneLine(sink.description)});
    }
    if (contains(catalog.outputs, snapshot.defaultSink))
        catalog.defaultOutput = snapshot.defaultSink;
    for (const InputFacts& input : snapshot.inputs) {
        const ProgramFacts program = programOf(input, snapshot);
        const QString id = applicationOf(program, ownProcessId);
        if (isUsableId(id) && !contains(catalog.applications, id))
            catalog.applications.append({id, oneLine(programName(program))});
    }
    return catalog;
}

MicrophoneList microphonesOf(const ServerSnapshot& snapshot) {
    const auto isMicrophone = [](const DeviceFacts& source) { return !source.isMonitor; };
    const DeviceFacts* defaultSink = findDevice(snapshot.sinks, snapshot.defaultSink);
    const bool isFallback =
        defaultSink && defaultSink->source == snapshot.defaultSource.toUtf8() &&
        std::none_of(snapshot.sources.begin(), snapshot.sources.end(), isMicrophone);
    MicrophoneList list;
    for (const DeviceFacts& source : snapshot.sources) {
        const bool isDefault = source.name == snapshot.defaultSource && !isFallback;
        if (!isUsableId(source.name) || !(isMicrophone(source) || isDefault))
            continue;
        list.entries.append({source.name.toUtf8(), oneLine(source.description)});
        if (isDefault)
            list.defaultId = source.name.toUtf8();
    }
    return list;
}

QList<InputFacts> inputsOf(const ServerSnapshot& snapshot, const QString& applicationId,
                           const QString& ownProcessId) {
    QList<InputFacts> inputs;
    for (const InputFacts& input : snapshot.inputs) {
        if (!applicationId.isEmpty() &&
            applicationOf(programOf(input, snapshot), ownProcessId) == applicationId)
            inputs.append(input);
    }
    return inputs;
}

} // namespace qn
