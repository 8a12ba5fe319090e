// The settings half of SamplingProperties: the "Sampling" element of a monitor's
// configuration, the connection to the SPC database, the specification limits of the
// configured part and the choice of another part.

#include "SamplingProperties.h"

#include "DatabaseSupport.h"
#include "PartSelector.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/XMLSupport.h"
#include "platform/spc/DataSource.h"
#include "platform/spc/Database.h"
#include "platform/spc/SqlDatabase.h"
#include "stats/DatasetCollection.h"

#include <cmath>
#include <limits>

using namespace XMLSupport;

namespace {

const QString kSampling = QStringLiteral("Sampling");
const QString kDatabase = QStringLiteral("Database");
const QString kPart = QStringLiteral("Part");
const QString kProcess = QStringLiteral("Process");
constexpr const char *kSetXMLNode = "SamplingProperties.SetXMLNode";

// A whole number as the configuration writes it; a fraction is rounded as the
// configuration's older writers did (half to even).
qint32 integerFromText(const QString &text, const QString &attribute)
{
    const QString trimmed = text.trimmed();
    bool isNumber = false;
    double value = double(trimmed.toLongLong(&isNumber));
    if (!isNumber) {
        value = std::nearbyint(trimmed.toDouble(&isNumber));
        if (!isNumber || !std::isfinite(value))
            throw ProgramError(ProgramError::kTypeMismatch,
                               QStringLiteral("Type mismatch: %1=\"%2\"").arg(attribute, text),
                               QLatin1String(kSetXMLNode));
    }
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<qint32>::max())
        throw ProgramError(ProgramError::kOverflow,
                           QStringLiteral("Overflow: %1=\"%2\"").arg(attribute, text),
                           QLatin1String(kSetXMLNode));
    return qint32(value);
}

} // namespace

SamplingProperties::SamplingProperties(SamplingServices services)
    : m_services(std::move(services))
{
    if (!m_services.makeDatabase)
        m_services.makeDatabase = [] { return std::make_unique<qlaDatabase6::SqlDatabase>(); };
    m_database = m_services.makeDatabase();
    m_database->setDataSourceName(defaultDataSourceName());
    // A database that answers takes the backlog at once and gives its limits.
    connect(m_database.get(), &qlaDatabase6::Database::connected, this, [this] {
        m_nextForward = QDateTime();
        m_retrySeconds = kFirstRetrySeconds;
        emit databaseReachable();
    });
}

SamplingProperties::~SamplingProperties() = default;

QString SamplingProperties::defaultDataSourceName() const
{
    return qlaDatabase6::DataSource::defaultName(m_services.dataFolder);
}

QString SamplingProperties::DataSourceName() const
{
    return m_database->dataSourceName();
}

bool SamplingProperties::DataSourceConnected() const
{
    return m_database->isConnected();
}

void SamplingProperties::setDataSourceName(const QString &dsn)
{
    applyDataSourceName(dsn);
}

std::unique_ptr<qlaDatabase6::Database> SamplingProperties::makeDatabase(const QString &dsn) const
{
    std::unique_ptr<qlaDatabase6::Database> database = m_services.makeDatabase();
    database->setDataSourceName(dsn.trimmed().isEmpty() ? defaultDataSourceName() : dsn);
    return database;
}

void SamplingProperties::applyDataSourceName(const QString &dsn)
{
    // A password never stays in the name: the name is saved, shown and logged. The
    // server's password comes from PGPASSWORD or the password file instead.
    bool passwordFound = false;
    const QString clean = qlaDatabase6::DataSource::withoutPassword(dsn, &passwordFound);
    if (passwordFound) {
        m_services.errors.Show(
            QStringLiteral("SamplingProperties.DataSourceName"), ProgramError::kProgramErrorNumber,
            QStringLiteral("The data source name %1 carries a password, which is not kept: "
                           "the password comes from PGPASSWORD or the password file")
                .arg(qlaDatabase6::DataSource::masked(dsn)),
            QStringLiteral("SamplingProperties"));
    }
    const QString wanted = clean.trimmed().isEmpty() ? defaultDataSourceName() : clean;
    // Handing over the same name again would drop a working connection for nothing.
    if (wanted == m_database->dataSourceName())
        return;
    m_database->setDataSourceName(wanted);
    // The backlog and the outage belong to a data source.
    m_backlog = -1;
    m_databaseAway = false;
    m_nextForward = QDateTime();
    m_retrySeconds = kFirstRetrySeconds;
}

bool SamplingProperties::libraryAvailable()
{
    return m_services.support.DatabaseLibraryAvailable();
}

bool SamplingProperties::ensureConnected(const char *location)
{
    if (m_database->isConnected())
        return true;
    if (m_database->openConnection())
        return true;
    if (location) {
        m_services.errors.Show(QLatin1String(location), ProgramError::kProgramErrorNumber,
                               m_database->lastErrorText(), DataSourceName());
    }
    return false;
}

// ---- Configuration -------------------------------------------------------------------

QDomElement SamplingProperties::GetXMLNode(QDomDocument &document)
{
    QDomElement sampling;
    reportFailures(m_services.errors, "SamplingProperties.GetXMLNode", [&] {
        sampling = document.createElement(kSampling);
        SetXMLAttribute(sampling, QStringLiteral("Enabled"), m_enabled);
        SetXMLAttribute(sampling, QStringLiteral("SamplingPeriod"), m_samplingPeriod);
        SetXMLAttribute(sampling, QStringLiteral("CollectionType"), m_collectionType);
        SetXMLAttribute(sampling, QStringLiteral("SubgroupSize"), m_subgroupSize);
        SetXMLAttribute(sampling, QStringLiteral("EnableAlarmLogging"), m_enableAlarmLogging);
        SetXMLAttribute(sampling, QStringLiteral("LogAlarms"), m_logAlarms);

        QDomElement database = document.createElement(kDatabase);
        sampling.appendChild(database);
        SetXMLAttribute(database, QStringLiteral("DSN"), DataSourceName());

        QDomElement part = document.createElement(kPart);
        sampling.appendChild(part);
        SetXMLAttribute(part, QStringLiteral("Name"), m_part);
        SetXMLAttribute(part, QStringLiteral("Reselect"), m_allowPartReselect);

        QDomElement process = document.createElement(kProcess);
        sampling.appendChild(process);
        SetXMLAttribute(process, QStringLiteral("Name"), m_process);
    });
    return sampling;
}

void SamplingProperties::SetXMLNode(const QDomElement &configuration)
{
    reportFailures(m_services.errors, kSetXMLNode, [&] {
        // A configuration written before sampling existed has no element: the settings
        // stay as they are.
        const QDomElement sampling = configuration.firstChildElement(kSampling);
        if (sampling.isNull())
            return;
        readSettings(sampling);
        if (m_enabled && libraryAvailable())
            ensureConnected(kSetXMLNode);
    });
}

void SamplingProperties::readSettings(const QDomElement &sampling)
{
    // Each attribute is read with the field's current value as its default, so one that
    // is missing leaves the field as it is. A number that cannot be read is reported and
    // leaves its field too; the rest is still read.
    const auto readBoolean = [](const QDomElement &element, const QString &name, bool &field) {
        field = textToBoolean(GetXMLAttribute(element, name, field), field);
    };
    const auto readInteger = [this](const QDomElement &element, const QString &name,
                                    qint32 &field) {
        reportFailures(m_services.errors, kSetXMLNode, [&] {
            field = integerFromText(GetXMLAttribute(element, name, field), name);
        });
    };
    const auto readText = [](const QDomElement &element, const QString &name, QString &field) {
        field = GetXMLAttribute(element, name, field);
    };

    readBoolean(sampling, QStringLiteral("Enabled"), m_enabled);
    readInteger(sampling, QStringLiteral("SamplingPeriod"), m_samplingPeriod);
    readInteger(sampling, QStringLiteral("CollectionType"), m_collectionType);
    readInteger(sampling, QStringLiteral("SubgroupSize"), m_subgroupSize);
    readBoolean(sampling, QStringLiteral("EnableAlarmLogging"), m_enableAlarmLogging);
    readInteger(sampling, QStringLiteral("LogAlarms"), m_logAlarms);

    const QDomElement database = sampling.firstChildElement(kDatabase);
    if (!database.isNull())
        applyDataSourceName(GetXMLAttribute(database, QStringLiteral("DSN"), DataSourceName()));

    const QDomElement part = sampling.firstChildElement(kPart);
    if (!part.isNull()) {
        readText(part, QStringLiteral("Name"), m_part);
        readBoolean(part, QStringLiteral("Reselect"), m_allowPartReselect);
    }
    const QDomElement process = sampling.firstChildElement(kProcess);
    if (!process.isNull())
        readText(process, QStringLiteral("Name"), m_process);
}

// ---- Specification limits ------------------------------------------------------------

void SamplingProperties::InitializeSpecificationLimits(DatasetCollection &datasets)
{
    reportFailures(m_services.errors, "SamplingProperties.InitializeSpecificationLimits", [&] {
        if (!libraryAvailable() || !m_enabled)
            return;
        DatabaseSupport &support = m_services.support;
        const qlaDatabase6::Part part = support.ResolvePartByName(*m_database, m_part);
        if (part.id() == 0)
            return;
        for (const std::unique_ptr<Dataset> &dataset : datasets) {
            // A characteristic that is no test of the database keeps what it has.
            const qlaDatabase6::Test test = support.ResolveTestByName(*m_database, dataset->Name);
            if (test.id() == 0)
                continue;
            const qlaDatabase6::SpecLimit limit =
                support.ResolveSpecLim(*m_database, part.id(), test.id());
            dataset->LimitFlags = limit.limitFlags();
            dataset->UpperSpecLimit = limit.upperSpecLimit();
            dataset->LowerSpecLimit = limit.lowerSpecLimit();
            dataset->UpperWarningLimit = limit.upperWarningLimit();
            dataset->LowerWarningLimit = limit.lowerWarningLimit();
        }
    });
}

// ---- Part selection ------------------------------------------------------------------

bool SamplingProperties::SelectPart(QObject *owner)
{
    bool changed = false;
    reportFailures(m_services.errors, "SamplingProperties.SelectPart", [&] {
        if (!libraryAvailable())
            return;
        // The part of a running collection is fixed: its subgroups would otherwise mix
        // two parts in one period.
        if (m_collecting || !m_allowPartReselect || !m_services.partSelector) {
            m_services.messageBoxes.beep();
            return;
        }
        qlaDatabase6::Part current = m_services.support.ResolvePartByName(*m_database, m_part);
        // Before the first connection (or for a part the database does not have) the
        // record is empty; the chooser still opens on the configured name.
        if (current.id() == 0)
            current.setName(m_part);
        const std::optional<QString> chosen =
            m_services.partSelector->choosePart(owner, *m_database, current);
        if (chosen && chosen->compare(m_part, Qt::CaseInsensitive) != 0) {
            m_part = *chosen;
            changed = true;
        }
    });
    return changed;
}
