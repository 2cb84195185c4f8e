#include "observing/key_path_binding.h"
#include "observing/key_path_observer.h"
#include "observing/observable_object.h"

#include <QCoreApplication>
#include <QHash>
#include <QMetaMethod>
#include <QPointer>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace vornic {
namespace {

/// A box with a left edge and a width, whose frame depends on both and they on it.
class Box : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(double left READ left WRITE setLeft NOTIFY leftChanged)
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(double frame READ frame NOTIFY frameChanged)
    Q_PROPERTY(double room READ room NOTIFY roomChanged)
    Q_PROPERTY(bool fits READ fits NOTIFY fitsChanged)
    Q_PROPERTY(QString title READ title CONSTANT)
public:
    Box()
    {
        declareDependency("left", { "frame" });
        declareDependency("width", { "frame" });
        declareDependency("frame", { "left", "width" });
        declareDependency("room", { "left" });
        declareDependency("fits", { "room" });
    }
    [[nodiscard]] double left() const { return m_left; }
    [[nodiscard]] double width() const { return m_width; }
    [[nodiscard]] double frame() const { return m_left * 1000 + m_width; }
    [[nodiscard]] double room() const { return 100 - m_left; }
    [[nodiscard]] bool fits() const { return room() >= m_width; }
    [[nodiscard]] QString title() const { return QStringLiteral("box"); }
    void setLeft(double left)
    {
        m_left = left;
        notifyChanged({ "left" });
    }
    /// Never below 10.
    void setWidth(double width)
    {
        m_width = std::max(10.0, width);
        notifyChanged({ "width" });
    }

signals:
    void leftChanged();
    void widthChanged();
    void frameChanged();
    void roomChanged();
    void fitsChanged();

private:
    double m_left = 0;
    double m_width = 20;
};

/// A shelf with a box of its own, on whose properties its own depend.
class Shelf : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(vornic::Box *box READ box CONSTANT)
    Q_PROPERTY(vornic::Box *noBox READ noBox CONSTANT)
    Q_PROPERTY(bool open READ open WRITE setOpen NOTIFY openChanged)
    Q_PROPERTY(bool canMove READ canMove NOTIFY canMoveChanged)
    Q_PROPERTY(QString label READ label NOTIFY labelChanged)
public:
    Shelf()
    {
        declareDependency("canMove", { "open", "box.left" });
        declareDependency("label", { "canMove" });
    }
    [[nodiscard]] Box *box() const
    {
        ++boxReads;
        return m_box.get();
    }
    [[nodiscard]] Box *noBox() const { return nullptr; }
    [[nodiscard]] bool open() const { return m_open; }
    [[nodiscard]] bool canMove() const { return m_open && m_box->left() < 50; }
    [[nodiscard]] QString label() const
    {
        return canMove() ? QStringLiteral("movable") : QStringLiteral("fixed");
    }
    void setOpen(bool open)
    {
        m_open = open;
        notifyChanged({ "open" });
    }
    mutable int boxReads = 0;

signals:
    void openChanged();
    void canMoveChanged();
    void labelChanged();

private:
    std::unique_ptr<Box> m_box = std::make_unique<Box>();
    bool m_open = false;
};

/// A room with a shelf of its own, to make paths of three keys.
class Room : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(vornic::Shelf *shelf READ shelf CONSTANT)
    Q_PROPERTY(bool roomy READ roomy NOTIFY roomyChanged)
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)
public:
    Room()
    {
        declareDependency("roomy", { "shelf.box.room" });
        declareDependency("ready", { "shelf.open", "shelf.box.left" });
    }
    [[nodiscard]] Shelf *shelf() const { return m_shelf.get(); }
    [[nodiscard]] bool roomy() const { return m_shelf->box()->room() > 50; }
    [[nodiscard]] bool ready() const { return m_shelf->canMove(); }

signals:
    void roomyChanged();
    void readyChanged();

private:
    std::unique_ptr<Shelf> m_shelf = std::make_unique<Shelf>();
};

/// An object that is no ObservableObject: an ordinary control.
class Field : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(double exact READ exact WRITE setExact NOTIFY exactChanged)
public:
    [[nodiscard]] int value() const { return m_value; }
    [[nodiscard]] bool enabled() const { return m_enabled; }
    [[nodiscard]] QString text() const { return m_text; }
    [[nodiscard]] double exact() const { return m_exact; }
    void setValue(int value)
    {
        m_value = value;
        emit valueChanged(value);
    }
    void setEnabled(bool enabled) { m_enabled = enabled; }
    void setText(const QString &text)
    {
        ++textWrites;
        m_text = text;
        emit textChanged();
    }
    void setExact(double exact)
    {
        m_exact = exact;
        emit exactChanged();
    }
    int textWrites = 0;

signals:
    void valueChanged(int value);
    void textChanged();
    void exactChanged();

private:
    int m_value = 0;
    bool m_enabled = true;
    QString m_text;
    double m_exact = 0;
};

/// Counts every NOTIFY signal of an object by its property's name.
class Tally : public QObject
{
    Q_OBJECT
public:
    explicit Tally(QObject *object)
    {
        const QMetaObject *meta = object->metaObject();
        for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            if (!property.hasNotifySignal())
                continue;
            m_names.insert(property.notifySignalIndex(), QLatin1StringView(property.name()));
            connect(object,
                    property.notifySignal(),
                    this,
                    staticMetaObject.method(staticMetaObject.indexOfSlot("count()")));
        }
    }
    /// The names told since the last call, sorted; a name told twice stands twice.
    QStringList take()
    {
        m_told.sort();
        return std::exchange(m_told, {});
    }

private slots:
    void count() { m_told.append(m_names.value(senderSignalIndex())); }

private:
    QHash<int, QString> m_names;
    QStringList m_told;
};

using Names = QStringList;

TEST(ObservableObject, TellsEveryDependentOnceThroughChainsAndCircles)
{
    Box box;
    Tally tally(&box);
    box.setLeft(7);
    EXPECT_EQ(tally.take(), (Names { "fits", "frame", "left", "room", "width" }));
    box.setWidth(30);
    EXPECT_EQ(tally.take(), (Names { "fits", "frame", "left", "room", "width" }));
}

TEST(ObservableObject, TellsTheChangedKeyFirst)
{
    Box box;
    QStringList order;
    QObject::connect(&box, &Box::frameChanged, [&] { order << "frame"; });
    QObject::connect(&box, &Box::leftChanged, [&] { order << "left"; });
    box.setLeft(1);
    EXPECT_EQ(order, (Names { "left", "frame" }));
}

TEST(ObservableObject, TellsASetThatStoresTheSameValue)
{
    Box box;
    Tally tally(&box);
    box.setLeft(0);
    EXPECT_TRUE(tally.take().contains("left"));
}

TEST(ObservableObject, ValuesAreAlreadyNewWhenTold)
{
    Box box;
    double seen = 0;
    QObject::connect(&box, &Box::roomChanged, [&] { seen = box.room(); });
    box.setLeft(30);
    EXPECT_EQ(seen, 70);
}

TEST(ObservableObject, ASetInsideANotificationIsAChangeOfItsOwn)
{
    Box box;
    int widthTold = 0;
    QObject::connect(&box, &Box::leftChanged, [&] {
        if (box.width() < 50)
            box.setWidth(50);
    });
    QObject::connect(&box, &Box::widthChanged, [&] { ++widthTold; });
    box.setLeft(1);
    EXPECT_EQ(box.width(), 50);
    EXPECT_EQ(widthTold, 2); // once for each of the two changes
}

TEST(ObservableObject, KeyPathsReachDependentsAndTheirDependents)
{
    Shelf shelf;
    shelf.setOpen(true);
    Tally tally(&shelf);
    EXPECT_TRUE(shelf.canMove());
    shelf.box()->setLeft(60);
    EXPECT_FALSE(shelf.canMove());
    EXPECT_EQ(shelf.label(), "fixed");
    EXPECT_EQ(tally.take(), (Names { "canMove", "label" }));
    shelf.setOpen(false);
    EXPECT_EQ(tally.take(), (Names { "canMove", "label", "open" }));
    shelf.box()->setWidth(30); // changes "left" too, by the declared circle
    EXPECT_EQ(tally.take(), (Names { "canMove", "label" }));
}

TEST(ObservableObject, SeveralPathsThroughSeveralObjectsAreFollowed)
{
    Room room;
    room.shelf()->setOpen(true);
    Tally tally(&room);
    room.shelf()->setOpen(false);
    EXPECT_EQ(tally.take(), Names { "ready" });
    room.shelf()->box()->setLeft(60); // and with it "room", which depends on it in the box
    EXPECT_EQ(tally.take(), (Names { "ready", "roomy" }));
    EXPECT_FALSE(room.roomy());
}

TEST(ObservableObject, TheOwnersEndTellsNothing)
{
    int told = 0;
    {
        Room room;
        QObject::connect(&room, &Room::readyChanged, [&] { ++told; });
        room.shelf()->setOpen(true);
        ASSERT_EQ(told, 1);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(told, 1);
}

TEST(ObservableObject, PathsAreNotReadBeforeSomebodyListens)
{
    Shelf shelf;
    QObject::connect(&shelf, &QObject::destroyed, [] {});
    EXPECT_EQ(shelf.boxReads, 0);
    QObject::connect(&shelf, &Shelf::labelChanged, [] {});
    EXPECT_GT(shelf.boxReads, 0);
}

TEST(KeyPathObserver, ReadsAndWritesThroughTheObjects)
{
    Room room;
    KeyPathObserver observer(&room, "shelf.box.left");
    EXPECT_EQ(observer.value().toDouble(), 0);
    EXPECT_TRUE(observer.setValue(5));
    EXPECT_EQ(room.shelf()->box()->left(), 5);
    EXPECT_EQ(observer.value().toDouble(), 5);
    EXPECT_FALSE(observer.setValue("five"));
    EXPECT_EQ(room.shelf()->box()->left(), 5);
}

TEST(KeyPathObserver, TellsOfEveryChange)
{
    Room room;
    const KeyPathObserver observer(&room, "shelf.box.left");
    QList<double> told;
    QObject::connect(&observer, &KeyPathObserver::valueChanged, [&] { told << observer.value().toDouble(); });
    room.shelf()->box()->setLeft(4);
    room.shelf()->box()->setLeft(9);
    room.shelf()->setOpen(true);
    EXPECT_EQ(told, (QList<double> { 4, 9 }));
}

TEST(KeyPathObserver, AReadOnlyPropertyIsNotWritten)
{
    Box box;
    KeyPathObserver observer(&box, "room");
    EXPECT_FALSE(observer.setValue(5));
    EXPECT_EQ(observer.value().toDouble(), 100);
}

TEST(KeyPathObserver, AConstantPropertyIsRead)
{
    Box box;
    EXPECT_EQ(KeyPathObserver(&box, "title").value().toString(), "box");
}

TEST(KeyPathObserver, AnUnknownKeyHasNoValue)
{
    Box box;
    EXPECT_FALSE(KeyPathObserver(&box, "depth").value().isValid());
    EXPECT_FALSE(KeyPathObserver(&box, "left.right").value().isValid());
    EXPECT_FALSE(KeyPathObserver(&box, "depth.left").value().isValid());
    EXPECT_FALSE(KeyPathObserver(&box, "").value().isValid());
    EXPECT_FALSE(KeyPathObserver(nullptr, "left").value().isValid());
    EXPECT_FALSE(KeyPathObserver(&box, "depth").setValue(1));
}

TEST(KeyPathObserver, ANullObjectOnTheWayHasNoValue)
{
    Shelf shelf;
    KeyPathObserver observer(&shelf, "noBox.left");
    EXPECT_FALSE(observer.value().isValid());
    EXPECT_FALSE(observer.setValue(1));
}

TEST(KeyPathObserver, OutlivesItsObject)
{
    auto box = std::make_unique<Box>();
    KeyPathObserver observer(box.get(), "left");
    EXPECT_TRUE(observer.value().isValid());
    box.reset();
    EXPECT_FALSE(observer.value().isValid());
    EXPECT_FALSE(observer.setValue(5));
}

TEST(KeyPathObserver, MayLoseItsLifeByItsOwnWrite)
{
    Box box;
    auto observer = std::make_unique<KeyPathObserver>(&box, "left");
    QObject::connect(&box, &Box::leftChanged, [&] { observer.reset(); });
    EXPECT_TRUE(observer->setValue(6));
    EXPECT_EQ(observer, nullptr);
    EXPECT_EQ(box.left(), 6);
}

TEST(KeyPathObserver, FollowsAPlainObject)
{
    Field field;
    KeyPathObserver observer(&field, "value");
    int told = 0;
    QObject::connect(&observer, &KeyPathObserver::valueChanged, [&] { ++told; });
    field.setValue(3);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(observer.value().toInt(), 3);
}

TEST(KeyPathBinding, ShowsTheStoredValueAndStoresTheShownOne)
{
    Box box;
    box.setWidth(40);
    Field field;
    new KeyPathBinding(&field, "value", &box, "width");
    EXPECT_EQ(field.value(), 40);
    box.setWidth(41);
    EXPECT_EQ(field.value(), 41);
    field.setValue(42);
    EXPECT_EQ(box.width(), 42);
}

TEST(KeyPathBinding, ShowsWhatTheModelMadeOfTheValue)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "value", &box, "width");
    field.setValue(3);
    EXPECT_EQ(box.width(), 10);
    EXPECT_EQ(field.value(), 10);
    field.setValue(4); // the model stands at its limit already
    EXPECT_EQ(field.value(), 10);
}

TEST(KeyPathBinding, DoesNotStoreWhatTheControlRounded)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "value", &box, "width");
    box.setWidth(40.4);
    EXPECT_EQ(field.value(), 40);
    EXPECT_EQ(box.width(), 40.4);
}

TEST(KeyPathBinding, DoesNotFeedBack)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "exact", &box, "left");
    Tally boxTally(&box);
    Tally fieldTally(&field);
    field.setExact(5);
    EXPECT_EQ(boxTally.take().filter("left").size(), 1);
    EXPECT_EQ(fieldTally.take(), Names { "exact" });
    box.setLeft(6);
    EXPECT_EQ(boxTally.take().filter("left").size(), 1);
    EXPECT_EQ(fieldTally.take(), Names { "exact" });
}

TEST(KeyPathBinding, TwoControlsOfOneValueAgree)
{
    Box box;
    Field field;
    Field stepper;
    new KeyPathBinding(&field, "text", &box, "width");
    new KeyPathBinding(&stepper, "value", &box, "width");
    stepper.setValue(33);
    EXPECT_EQ(field.text(), "33");
    field.setText("5");
    EXPECT_EQ(stepper.value(), 10);
    EXPECT_EQ(field.text(), "10");
    field.setText("wide"); // no number: the stored value comes back
    EXPECT_EQ(field.text(), "10");
    EXPECT_EQ(box.width(), 10);
}

TEST(KeyPathBinding, LeavesAControlAloneThatShowsTheValueAlready)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "text", &box, "width");
    const int writes = field.textWrites;
    field.setText("30"); // as if typed
    EXPECT_EQ(field.textWrites, writes + 1);
}

TEST(KeyPathBinding, WithoutAValueTheControlShowsNothing)
{
    Shelf shelf;
    Field field;
    field.setText("old");
    new KeyPathBinding(&field, "text", &shelf, "noBox.width");
    EXPECT_EQ(field.text(), "");
    field.setText("12");
    EXPECT_EQ(field.text(), "");
}

TEST(KeyPathBinding, AControlPropertyWithoutASignalOnlyShows)
{
    Shelf shelf;
    Field field;
    new KeyPathBinding(&field, "enabled", &shelf, "canMove");
    EXPECT_FALSE(field.enabled());
    shelf.setOpen(true);
    EXPECT_TRUE(field.enabled());
    shelf.box()->setLeft(80);
    EXPECT_FALSE(field.enabled());
}

TEST(KeyPathBinding, AReadOnlyValueIsShownAgain)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "value", &box, "room");
    field.setValue(1);
    EXPECT_EQ(field.value(), 100);
}

TEST(KeyPathBinding, AModelSetByTheControlsOwnObserverIsShown)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "value", &box, "width");
    QObject::connect(&field, &Field::valueChanged, [&](int value) {
        if (value > 50)
            box.setWidth(50);
    });
    box.setWidth(70);
    EXPECT_EQ(box.width(), 50);
    EXPECT_EQ(field.value(), 50);
}

TEST(KeyPathBinding, DiesWithItsControlAndSurvivesItsModel)
{
    auto box = std::make_unique<Box>();
    auto field = std::make_unique<Field>();
    Field other;
    const QPointer<KeyPathBinding> binding = new KeyPathBinding(field.get(), "value", box.get(), "width");
    new KeyPathBinding(&other, "value", box.get(), "width");
    field.reset();
    EXPECT_FALSE(binding);
    box->setWidth(30);
    EXPECT_EQ(other.value(), 30);
    box.reset();
    other.setValue(7);
    EXPECT_EQ(other.value(), 0);
}

TEST(KeyPathBinding, AControlMayDieOfItsOwnChange)
{
    Box box;
    auto field = std::make_unique<Field>();
    new KeyPathBinding(field.get(), "value", &box, "width");
    QObject::connect(&box, &Box::widthChanged, [&] { field.reset(); });
    // The signal is emitted at the end of the setter, which touches nothing of the object afterwards.
    field->setValue(30);
    EXPECT_EQ(field, nullptr);
    EXPECT_EQ(box.width(), 30);
}

TEST(KeyPathBinding, AControlMayDieOfBeingShownAValue)
{
    Box box;
    auto field = std::make_unique<Field>();
    new KeyPathBinding(field.get(), "value", &box, "width");
    QObject::connect(field.get(), &Field::valueChanged, &box, [&] { field.reset(); });
    box.setWidth(30);
    EXPECT_EQ(field, nullptr);
    EXPECT_EQ(box.width(), 30);
}

TEST(KeyPathBinding, AnUnknownPropertyOfTheControlBindsNothing)
{
    Box box;
    Field field;
    new KeyPathBinding(&field, "colour", &box, "width");
    box.setWidth(30);
    EXPECT_EQ(field.value(), 0);
}

} // namespace
} // namespace vornic

#include "tst_observing.moc"
