// The driver that asks ADO, with a provider that the test plays, and with the system's own record sets.

#include "tests/data/fake_ado_windows.h"

#include <QTest>
#include <array>

#include "data/lighting_database.h"
#include "data/store/ado/ado_connection.h"
#include "data/store/ado/ado_recordset.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// The blocks of memory that the process holds: objects, and texts of automation when their cache is off.
int HeldBlocks() {
    int blocks = 0;
    std::array<HANDLE, 64> heaps{};
    const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD heap = 0; heap < count; ++heap) {
        for (PROCESS_HEAP_ENTRY entry{}; ::HeapWalk(heaps[heap], &entry) != 0;) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
    }
    return blocks;
}

using Fill = std::function<void(VARIANT&)>;

template <typename Part>
Fill As(VARTYPE type, Part VARIANT::*part, Part content) {
    return [=](VARIANT& value) {
        value.vt = type;
        value.*part = content;
    };
}

Fill Number(LONG number) {
    return As(VT_I4, &VARIANT::lVal, number);
}

Fill Text(const wchar_t* text) {
    return [text](VARIANT& value) {
        value.vt = VT_BSTR;
        value.bstrVal = ::SysAllocString(text);
    };
}

Fill Decimal(ULONGLONG digits, BYTE scale, bool isNegative = false) {
    return [=](VARIANT& value) {
        value.decVal = {};
        value.decVal.Lo64 = digits;
        value.decVal.scale = scale;
        value.decVal.sign = isNegative ? DECIMAL_NEG : 0;
        value.vt = VT_DECIMAL;
    };
}

FieldValue Read(const Fill& fill) {
    ado::Variant value;
    fill(value.Get());
    return ado::ToFieldValue(value.Get());
}

}  // namespace

class TestAdo : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void cleanupTestCase() { ::CoUninitialize(); }

    void ValuesOfEachType() {
        using Null = std::monostate;
        const std::pair<Fill, FieldValue> cases[] = {
            {As<VARTYPE>(VT_EMPTY, &VARIANT::vt, VT_EMPTY), Null()},
            {As<VARTYPE>(VT_NULL, &VARIANT::vt, VT_NULL), Null()},
            {Text(L"灯具 %'"), u"灯具 %'"_s},
            {As<BSTR>(VT_BSTR, &VARIANT::bstrVal, nullptr), u""_s},
            {As<BYTE>(VT_UI1, &VARIANT::bVal, 255), qint64{255}},
            {As<SHORT>(VT_I2, &VARIANT::iVal, -32768), qint64{-32768}},
            {Number(-2147483647), qint64{-2147483647}},
            {As<VARIANT_BOOL>(VT_BOOL, &VARIANT::boolVal, VARIANT_TRUE), qint64{1}},
            {As<VARIANT_BOOL>(VT_BOOL, &VARIANT::boolVal, VARIANT_FALSE), qint64{0}},
            {As<FLOAT>(VT_R4, &VARIANT::fltVal, 0.74F), 0.74},
            {As<DOUBLE>(VT_R8, &VARIANT::dblVal, 0.1), 0.1},
            {Decimal(9007199254740993, 0, true), qint64{-9007199254740993}},
            {Decimal(125, 2), 1.25},
            {As<CY>(VT_CY, &VARIANT::cyVal, {.int64 = -12345}), -1.2345},
            {As<DATE>(VT_DATE, &VARIANT::date, 39448.5), 39448.5},
        };
        for (const auto& [fill, expected] : cases) {
            const FieldValue value = Read(fill);
            QCOMPARE(value.index(), expected.index());
            QVERIFY(value == expected);
        }
        QCOMPARE(std::get<CString>(Read(Text(L""))).isNull(), false);
        QVERIFY_THROWS_EXCEPTION(ProviderError, Read(As<LONG>(VT_ERROR, &VARIANT::lVal, 5)));
        try {
            Read(As<SAFEARRAY*>(VT_ARRAY | VT_UI1, &VARIANT::parray, nullptr));
            QFAIL("an array is no value of a field");
        } catch (const ProviderError& error) {
            QVERIFY2(error.Message().contains(u"0x2011"_s), qPrintable(error.Message()));
        }
    }

    void ValuesGoThereAndBack() {
        for (const FieldValue& value : {FieldValue(), FieldValue(qint64{-7}), FieldValue(qint64{1} << 40),
                                        FieldValue(-0.1), FieldValue(u"荧光灯\0管"_s), FieldValue(u""_s)}) {
            QVERIFY(ado::ToFieldValue(ado::Variant(value).Get()) == value);
        }
    }

    void AsksTheProviderToTheLetter() {
        m_ado.columns = {L"id", L"LamphouseType"};
        m_ado.rows = {{Number(3), Text(L"直管荧光灯")}, {Number(7), Text(L"")}};
        const FakeAdoScope scope(m_ado);
        CLightingDatabase database([](const CString&) { return CreateAdoConnection(); },
                                   u"C:\\灯具\\bin\\q.exe"_s);
        std::vector<tagLAMPHOUSETYPE> types;
        QVERIFY(database.Connect() && database.LoadLampTypes(types) && database.Disconnect());
        QVERIFY(types == (std::vector<tagLAMPHOUSETYPE>{{3, u"直管荧光灯"_s}, {7, u""_s}}));
        const QString source = u"C:\\灯具\\Vexal\\灯具数据库.mdb;"_s;
        QCOMPARE(
            m_ado.calls,
            QStringList({u"Open(Provider=Microsoft.Jet.OLEDB.4.0;Data Source = %1, , , -1)"_s.arg(source),
                         u"Value(1)"_s,
                         u"Execute(select ID, LamphouseType from 光源类别 order by LamphouseType)"_s,
                         u"MoveNext()"_s, u"MoveNext()"_s, u"Close()"_s, u"Close()"_s}));
    }

    void StatementsWithoutRows() {
        const FakeAdoScope scope(m_ado);
        const auto connection = CreateAdoConnection();
        QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(u"too early"_s));
        connection->Open({}, {}, {}, -1);
        for (const FakeResult result :
             {FakeResult::Nothing, FakeResult::NullObject, FakeResult::ClosedRecordset}) {
            m_ado.result = result;
            const auto rows = connection->Execute(u"delete"_s);
            QVERIFY(rows->AtEnd());
            QVERIFY_THROWS_EXCEPTION(ProviderError, rows->MoveNext());
            QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(0));
        }
    }

    void FailuresAreTold() {
        using Way = FakeFailure::Way;
        std::vector<std::pair<QString, Way>> cases{
            {u"Open"_s, Way::DeferredException}, {u"Open"_s, Way::ErrorInfo}, {u"Open"_s, Way::Code}};
        for (const char* member : {"Open", "Execute", "State", "Fields", "EOF", "MoveNext", "Value"}) {
            cases.emplace_back(QString::fromLatin1(member), Way::Exception);
        }
        for (const auto& [member, way] : cases) {
            init();
            m_ado.columns = {L"ID"};
            m_ado.rows = {{Number(1)}};
            m_ado.hasProperties = false;
            m_ado.failingMember = member;
            m_ado.failure = {way, E_OUTOFMEMORY};
            const FakeAdoScope scope(m_ado);
            try {
                const auto connection = CreateAdoConnection();
                connection->Open({}, {}, {}, -1);
                const auto rows = connection->Execute(u"select"_s);
                QVERIFY(rows->Value(u"id"_s) == FieldValue(qint64{1}));
                rows->MoveNext();
                QFAIL(qPrintable(member));
            } catch (const ProviderError& error) {
                const bool isFull = error.Message() == u"JET 引擎: 找不到文件。"_s;
                QVERIFY2(isFull || (way == Way::Code && !error.Message().isEmpty()),
                         qPrintable(error.Message()));
                QCOMPARE(error.Kind(), FailureKind::OutOfMemory);
            }
        }
    }

    void NothingIsLeftOver() {
        constexpr int rounds = 100;
        int before = 0;
        for (int round = 0; round <= rounds; ++round) {
            AsksTheProviderToTheLetter();
            for (const auto way : {FakeFailure::Way::Exception, FakeFailure::Way::ErrorInfo}) {
                m_ado = {};
                m_ado.failingMember = u"Execute"_s;
                m_ado.failure = {way, E_FAIL};
                const FakeAdoScope scope(m_ado);
                const auto connection = CreateAdoConnection();
                connection->Open({}, {}, {}, -1);
                QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(u"select"_s));
            }
            m_ado = {};
            ::SetErrorInfo(0, nullptr);
            QCOMPARE(FakeAdo::objects, 0);
            before = round == 0 ? HeldBlocks() : before;
        }
        QVERIFY2(HeldBlocks() < before + rounds / 2, qPrintable(QString::number(HeldBlocks() - before)));
    }

    // A record set without a database, made by the ADO of this system. A new row empties the others in that
    // of Wine.
    void ReadsTheSystemsRecordset() {
        constexpr qint64 integerType = 3;
        constexpr qint64 realType = 5;
        constexpr qint64 textType = 202;
        ado::Object rows = ado::Object::Create(L"ADODB.Recordset");
        const ado::Object fields(rows.Property(L"Fields"));
        const auto field = [&](const CString& name) { return ado::Object(fields.Property(L"Item", name)); };
        fields.Call(L"Append", u"ID"_s, integerType, qint64{4});
        fields.Call(L"Append", u"LuminousFlux"_s, realType, qint64{8});
        fields.Call(L"Append", u"名    称"_s, textType, qint64{50});
        rows.Call(L"Open");
        rows.Call(L"AddNew");
        rows.Call(L"AddNew");
        rows.Call(L"MoveFirst");
        for (qint64 id = 1; id <= 2; ++id) {
            field(u"ID"_s).SetProperty(L"Value", id);
            field(u"LuminousFlux"_s).SetProperty(L"Value", 0.1);
            field(u"名    称"_s).SetProperty(L"Value", u"直管荧光灯"_s);
            rows.Call(L"MoveNext");
        }
        rows.Call(L"MoveFirst");
        ado::AdoRecordset read(std::move(rows));
        for (qint64 id = 1; id <= 2; ++id, read.MoveNext()) {
            QVERIFY(!read.AtEnd());
            QVERIFY(read.Recordset::Value(u"ID"_s) == FieldValue(id));
            QVERIFY(read.Value(1) == FieldValue(0.1));
            QVERIFY(read.Value(2) == FieldValue(u"直管荧光灯"_s));
        }
        QVERIFY(read.AtEnd());
        QVERIFY_THROWS_EXCEPTION(ProviderError, read.Column(u"名称"_s));
    }

    void init() { m_ado = {}; }

private:
    FakeAdo m_ado;
};

QTEST_GUILESS_MAIN(TestAdo)
#include "test_ado_windows.moc"
