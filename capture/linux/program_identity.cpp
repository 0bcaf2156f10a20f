#include "capture/linux/program_identity.h"

#include <algorithm>
#include <iterator>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// Interpreters run many programs, so the binary alone does not identify one.
bool isInterpreter(const QString& binary) {
    const QLatin1StringView prefixes[] = {"python"_L1, "perl"_L1, "ruby"_L1,    "java"_L1,
                                          "node"_L1,   "wine"_L1, "electron"_L1};
    return std::any_of(std::begin(prefixes), std::end(prefixes),
                       [&](auto prefix) { return binary.startsWith(prefix); });
}

// Names that a sound library or an embedded browser announces in place of the program's own.
bool isLibraryName(const ProgramFacts& program) {
    return program.name.startsWith("QtPulseAudio:"_L1) ||
           program.name.startsWith("ALSA plug-in ["_L1) ||
           (program.name == "Chromium"_L1 && !program.binary.startsWith("chrom"_L1));
}

} // namespace

ProgramFacts programOf(const InputFacts& input, const ServerSnapshot& snapshot) {
    const ProgramFacts client = snapshot.clients.value(input.client);
    const auto either = [](const QString& own, const QString& clients) {
        return own.isEmpty() ? clients : own;
    };
    const ProgramFacts& own = input.program;
    return {either(own.portalId, client.portalId), either(own.binary, client.binary),
            either(own.applicationId, client.applicationId), either(own.name, client.name),
            either(own.processId, client.processId)};
}

QString programId(const ProgramFacts& program) {
    if (!program.portalId.isEmpty())
        return program.portalId;
    if (isInterpreter(program.binary) && !program.name.isEmpty() && !isLibraryName(program))
        return program.binary + u':' + program.name;
    for (const QString& id : {program.binary, program.applicationId, program.name}) {
        if (!id.isEmpty())
            return id;
    }
    return {};
}

QString programName(const ProgramFacts& program) {
    if (!program.name.isEmpty() && !(isLibraryName(program) && !program.binary.isEmpty()))
        return program.name;
    return program.binary.isEmpty() ? programId(program) : program.binary;
}

} // namespace qn
