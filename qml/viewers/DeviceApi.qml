// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
import QtQml

/// Sends the requests of a document that talks to its device by itself. It lives and dies with the document: what
/// is answered later, nobody hears.
QtObject {
    id: root

    // The requests that may still be answered.
    property var waiting: []

    /// Asks, and calls done(xhr) when the request has ended, with the status 0 if nothing came. In that case
    /// failed(xhr), if there is one, is called next. There is no limit to the time it takes.
    function send(method: string, url: string, headers: var, body: var, done: var, failed: var) {
        const xhr = new XMLHttpRequest() // qmllint disable
        xhr.onreadystatechange = () => {
            if (xhr.readyState === XMLHttpRequest.DONE)
                done(xhr)
        }
        if (failed)
            xhr.onerror = () => failed(xhr)
        waiting = waiting.filter(other => other.readyState !== XMLHttpRequest.DONE).concat([xhr])
        xhr.open(method, url)
        for (const name of Object.keys(headers))
            xhr.setRequestHeader(name, headers[name])
        xhr.send(body)
    }

    /// Sends a JSON object along.
    function sendJson(method: string, url: string, object: var, done: var, failed: var) {
        send(method, url, { "Content-Type": "application/json" }, JSON.stringify(object), done, failed)
    }

    // A request does not end with the document that sent it. It is not taken back either: who closes a viewer while
    // it deletes wants the file gone.
    Component.onDestruction: {
        for (const xhr of waiting)
            xhr.onreadystatechange = xhr.onerror = null
    }
}
