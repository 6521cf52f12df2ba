#include "DecodingError.h"

namespace Kestro {

QString CodingPath::text() const
{
    QString out;
    for (const Part& part : m_parts) {
        if (part.index >= 0)
            out += QLatin1Char('[') + QString::number(part.index) + QLatin1Char(']');
        else if (!part.ownedKey.isNull())
            out += QLatin1Char('.') + part.ownedKey;
        else
            out += QLatin1Char('.') + part.key;
    }
    return out;
}

QString DecodingError::description() const
{
    switch (m_kind) {
    case Kind::TypeMismatch:
        return m_path + QLatin1String(" is not ") + m_detail;
    case Kind::ValueNotFound:
        return m_path + QLatin1String(" has no ") + m_detail;
    case Kind::KeyNotFound:
        return QLatin1String("missing ") + m_path;
    case Kind::DataCorrupted:
        return m_path + QLatin1String(": ") + m_detail;
    }
    return {};
}

} // namespace Kestro
