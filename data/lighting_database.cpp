#include "data/lighting_database.h"

#include <QLoggingCategory>
#include <new>
#include <utility>

#include "data/database_path.h"
#include "data/field_reader.h"
#include "data/statement_text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

Q_LOGGING_CATEGORY(lcDatabase, "quorvane.database", QtDebugMsg)

constexpr int kUnspecifiedOptions = -1;
constexpr qsizetype kLongestTracedText = 255;

// Does not throw: what cannot be traced for want of memory is not traced.
void Trace(bool isOpen, const CString& diagnostic, const ProviderFailure& failure) {
    try {
        const CString text =
            diagnostic.left(kLongestTracedText) + u'\n' + failure.message.left(kLongestTracedText);
        if (isOpen) {
            qCDebug(lcDatabase).noquote() << text;
        } else {
            qCWarning(lcDatabase).noquote() << text;  // why the program does not start
        }
    } catch (const std::bad_alloc&) {
    }
}

// The query for the IDs of the rows that an insert has made, the newest first, with the same placeholders. An
// insert reads "insert into TABLE (COLUMNS) values (VALUES)".
CString SearchOfInsert(QStringView insert) {
    const QStringView target = insert.sliced(QStringView(u"insert into ").size());
    const auto columns = target.first(target.indexOf(u')')).sliced(target.indexOf(u'(') + 1).split(u',');
    const auto values =
        target.first(target.lastIndexOf(u')')).sliced(target.lastIndexOf(u'(') + 1).split(u',');
    CString search = u"select ID from "_s;
    search += target.first(target.indexOf(u' '));
    for (qsizetype column = 0; column < columns.size(); ++column) {
        search += column == 0 ? u" where "_s : u" and "_s;
        search += columns[column].trimmed();
        search += u'=';
        search += values[column].trimmed();
    }
    return search + u" order by ID desc"_s;
}

}  // namespace

CLightingDatabase::CLightingDatabase(ConnectionFactory factory, CString executablePath)
    : m_factory(std::move(factory)), m_executablePath(std::move(executablePath)) {}

bool CLightingDatabase::Connect() {
    if (m_connection != nullptr) {
        return true;
    }
    return Try(u"连接数据库失败!"_s,
               [&] {
                   const CString path = GetDatabasePath();
                   if (path.isEmpty()) {
                       return;
                   }
                   const CString connectionString =
                       u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = "_s + path + u';';
                   const std::shared_ptr<Connection> connection = m_factory(connectionString);
                   connection->Open(connectionString, CString(), CString(), kUnspecifiedOptions);
                   m_connection = connection;
               }) &&
           m_connection != nullptr;
}

bool CLightingDatabase::Disconnect() {
    return IsConnected() && Try(u"关闭数据库连接失败!"_s, [&] {
               m_connection->Close();
               m_connection.reset();
           });
}

bool CLightingDatabase::IsCheckRunning() const {
    return m_connection != nullptr && m_connection->IsCheckRunning();
}

bool CLightingDatabase::IsSound() {
    return IsConnected() && Try(u"IsSound"_s, [&] { m_connection->RequireSoundFile(); });
}

CString CLightingDatabase::ChangesPutAside() const {
    return m_connection != nullptr ? m_connection->ChangesPutAside() : CString();
}

bool CLightingDatabase::IsConnected() {
    if (m_connection == nullptr) {
        m_lastFailure = {.kind = FailureKind::NotConnected, .message = {}, .column = {}};
    }
    return m_connection != nullptr;
}

CString CLightingDatabase::GetDatabasePath() const {
    return DatabasePath(m_executablePath);
}

CString CLightingDatabase::GetApplicationParentFolder() const {
    return ApplicationParentFolder(m_executablePath);
}

template <typename Action>
bool CLightingDatabase::Try(const CString& diagnostic, const Action& action) {
    try {
        action();
        return true;
    } catch (const ProviderError& error) {
        m_lastFailure = error.Failure();
    } catch (const std::bad_alloc&) {
        m_lastFailure = {.kind = FailureKind::OutOfMemory, .message = {}, .column = {}};
    }
    Trace(m_connection != nullptr, diagnostic, m_lastFailure);
    return false;
}

bool CLightingDatabase::Query(QStringView statement, Arguments arguments,
                              const std::function<void(Recordset&)>& read) {
    CString text;
    return IsConnected() && Try(text, [&] {
               text = FormatStatement(statement, arguments);
               const std::unique_ptr<Recordset> rows = m_connection->Execute(text);
               read(*rows);
           });
}

bool CLightingDatabase::Execute(QStringView statement, Arguments arguments) {
    return Query(statement, arguments, [](const Recordset&) {});
}

// The ID is the largest one now; nobody else is expected to insert between the two statements. After a
// failure the record keeps the ID it came with.
bool CLightingDatabase::Insert(QStringView insert, Arguments arguments, QStringView readBack, int& id) {
    bool isFound = false;
    if (!FindLostInsert(insert, arguments, isFound, id)) {
        return false;
    }
    if (isFound) {
        return true;
    }
    const bool isInserted = Execute(insert, arguments);
    if (isInserted && Query(readBack, {}, [&](const Recordset& rows) {
            if (!rows.AtEnd()) {
                id = ToIntegerField(rows.Value(0));
            }
        })) {
        return true;
    }
    // Any other failure of the insert tells that nothing was written. Outside a submit the Access driver may
    // have no room for a row that is in its log.
    if (isInserted || m_lastFailure.kind == FailureKind::Other ||
        m_lastFailure.kind == FailureKind::OutOfMemory ||
        (m_lastFailure.kind == FailureKind::DiskFull && m_openSubmits == 0)) {
        const ProviderFailure reason = m_lastFailure;
        Try(u"Insert"_s, [&] { m_lostInserts.insert(FormatStatement(insert, arguments)); });
        m_lastFailure = reason;
    }
    return false;
}

// Of the rows that equal the insert, the newest one is the lost one.
bool CLightingDatabase::FindLostInsert(QStringView insert, Arguments arguments, bool& isFound, int& id) {
    CString search;
    return m_lostInserts.empty() || Try(search, [&] {
               const auto lost = m_lostInserts.find(FormatStatement(insert, arguments));
               if (lost == m_lostInserts.end()) {
                   return;
               }
               search = FormatStatement(SearchOfInsert(insert), arguments);
               const std::unique_ptr<Recordset> rows = m_connection->Execute(search);
               isFound = !rows->AtEnd();
               id = isFound ? ToIntegerField(rows->Value(0)) : id;
               m_lostInserts.erase(lost);
           });
}

void CLightingDatabase::BeginSubmit() {
    if (m_openSubmits++ == 0 && m_connection != nullptr) {
        Try(u"BeginSubmit"_s, [&] { m_connection->BeginSubmit(); });
    }
}

bool CLightingDatabase::EndSubmit() {
    --m_openSubmits;
    return IsConnected() && (m_openSubmits > 0 || Try(u"EndSubmit"_s, [&] { m_connection->EndSubmit(); }));
}

SubmitScope::SubmitScope(CLightingDatabase& database) : m_database(&database) {
    database.BeginSubmit();
}

SubmitScope::~SubmitScope() {
    Finish();
}

bool SubmitScope::Finish() {
    CLightingDatabase* database = std::exchange(m_database, nullptr);
    return database != nullptr && database->EndSubmit();
}

}  // namespace quorvane
