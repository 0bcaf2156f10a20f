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

// The program's id, or empty for this process and for what is no program.
QString applicationOf(const ProgramFacts& program, const QString& ownProcessId) {
    return program.processId == ownProcessId ? QString() : programId(program);
}

} // namespace

Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId) {
    Catalog catalog;
    for (const SinkFacts& sink : snapshot.sinks) {
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
