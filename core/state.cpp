#include "core/state.h"

namespace qn {

QDataStream& operator<<(QDataStream& stream, State state) {
    return stream << static_cast<qint32>(state);
}

QDataStream& operator>>(QDataStream& stream, State& state) {
    qint32 value = 0;
    stream >> value;
    state = static_cast<State>(value);
    return stream;
}

} // namespace qn
