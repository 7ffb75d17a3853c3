// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick
import QtTest
import kivui 1.0

Item {
    id: root
    width: 200
    height: 400

    Component {
        id: viewComponent
        ListView {
            width: 200
            height: 400
            delegate: Text {
                required property var model
                width: 200
                height: 20
                text: model.item ? model.item.objectName : ""
            }
        }
    }

    TestCase {
        name: "ObjectListModel"
        when: windowShown

        // Lists reach QML only as property values of the models; the type itself is not
        // registered.
        function test_isNotAQmlType() {
            let error = ""
            try {
                Qt.createQmlObject("import kivui 1.0\nObjectListModel {}", root, "inline").destroy()
            } catch (e) {
                error = e.qmlErrors.map(m => m.message).join("\n")
            }
            verify(error.indexOf("ObjectListModel is not a type") >= 0, error)
            compare(fixture.makeList().size, 0)
        }

        function test_viewGrowsWhenItemsArriveLater() {
            const list = fixture.makeList()
            const view = createTemporaryObject(viewComponent, root, { model: list })
            verify(view)
            compare(view.count, 0)
            fixture.append(list, "first")
            fixture.append(list, "second")
            compare(view.count, 2)
            view.forceLayout()
            verify(view.itemAtIndex(1))
            compare(view.itemAtIndex(1).text, "second")
        }

        function test_sizeBindingFollowsChanges() {
            const list = fixture.makeList()
            const sizeSpy = createTemporaryObject(spyComponent, root, { target: list, signalName: "sizeChanged" })
            fixture.append(list, "a")
            compare(list.size, 1)
            fixture.removeAll(list)
            compare(list.size, 0)
            compare(sizeSpy.count, 2)
        }

        function test_atReadsByIndex() {
            const list = fixture.makeList()
            const a = fixture.append(list, "a")
            compare(list.at(0), a)
            compare(list.at(0).objectName, "a")
            compare(list.at(list.size), null)
            compare(list.at(-1), null)
        }

        function test_detachKeepsItems() {
            const list = fixture.makeList()
            const kept = fixture.append(list, "kept")
            fixture.detachAll(list)
            compare(list.size, 0)
            compare(kept.objectName, "kept")
        }

        function test_delegatesReadTheItemRole() {
            const list = fixture.makeList()
            fixture.append(list, "camera")
            const view = createTemporaryObject(viewComponent, root, { model: list })
            compare(view.count, 1)
            view.forceLayout()
            verify(view.itemAtIndex(0))
            compare(view.itemAtIndex(0).text, "camera")
        }
    }

    Component {
        id: spyComponent
        SignalSpy {}
    }
}
