<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" sourcelanguage="en">
<context>
    <name>Quorvix</name>
    <message>
        <source>Copied</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save As</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No application could be found to open it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Actions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expanded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collapsed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Previous match</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next match</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Path</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Done</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cut</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Paste</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show as tree</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RESPONSE BODY</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit response and continue.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status Code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Breakpoint</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Continue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Apply Changes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swipe to delete.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No breakpoints yet.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Breakpoints</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log Parse Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share Swift Model</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Key: Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Decode Base64</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share Request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share cURL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share HAR File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share Mock Server File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Share Raw Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network Requests</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear requests</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export requests</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search requests...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finish</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable response breakpoint</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy Selection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>continue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>switching protocols</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>processing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>early hints</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>created</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>accepted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>non authoritative information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no content</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>reset content</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>partial content</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>multi status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>already reported</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>im used</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>multiple choices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>moved permanently</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>see other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not modified</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>needs proxy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>temporarily redirected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>permanently redirected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>bad request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unauthorized</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>payment required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>forbidden</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>method not allowed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unacceptable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>proxy authentication required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>request timed out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>conflict</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no longer exists</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>length required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>precondition failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>request too large</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>requested URL too long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unsupported media type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>requested range not satisfiable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expectation failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>misdirected request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unprocessable content</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>locked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>failed dependency</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>too early</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>upgrade required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>precondition required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>too many requests</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>request header fields too large</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unavailable for legal reasons</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>internal server error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unimplemented</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>bad gateway</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>service unavailable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>gateway timed out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unsupported version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>variant also negotiates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>insufficient storage</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>loop detected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not extended</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>network authentication required</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>informational</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>success</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>redirected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>client error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>server error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 KB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>bad URL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The request timed out.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unsupported URL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A server with the specified hostname could not be found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not connect to the server.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The network connection was lost.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The host&apos;s address could not be looked up.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>too many HTTP redirects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>resource unavailable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The Internet connection appears to be offline.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>redirected to a location that does not exist</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There was a bad response from the server.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Authentication is required.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cannot decode raw data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cannot decode the content</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cannot parse response</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>resource exceeds maximum size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A TLS error caused the secure connection to fail.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The certificate for this server is invalid.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server did not accept the certificate.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server requires a client certificate.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>unknown error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file&apos;s folder is not one of its owner&apos;s own.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder doesn&apos;t exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder could not be created.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file or link belongs to another user.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The text is empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The text is not valid UTF-8.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The JSON text is nested too deeply.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The JSON text holds a malformed number.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The JSON text holds a malformed string.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The JSON text is too large.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The text is not valid JSON.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The top level of the JSON text is neither an object nor an array.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saving…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The text is not a mock definition.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>key</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>keys</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>item</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>items</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>null</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid UTF-8 string</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Array</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>String</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bool</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Null</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file name is invalid.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to export HAR file: %@</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loading Body…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Applying Changes…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expires</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>lastAccess</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>eTag</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>comment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cache data missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The cache information is missing from the entry</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>After request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request Body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Removed to stay within the memory budget (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Missing request URL.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Missing request method.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No response body available to generate a mock.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response body is not valid JSON.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to map request path to mock server pattern.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to create mock file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No JSON payload available to generate a model.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to parse JSON payload.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to generate Swift model.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to create Swift model file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network Trace</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Opening Tree…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Opening Value…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copying…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Decoding…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing Swift Model…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swift model</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Decoded JWT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Header</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Decoded Base64</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bytes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request Headers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request Cookies</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response Headers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response Cookies</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response Body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response Cache</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Completed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pending</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>URL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>N/A</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HTTP type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HTTP Response code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Response Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Roundtrip duration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%.6f secs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Request Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cURL command</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing cURL Command…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HAR archive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing HAR File…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mock server file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing Mock Server File…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Raw details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preparing Raw Details…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copied!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Value copied to pasteboard.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No network requests to export.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>REQUEST HEADERS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>REQUEST COOKIES</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>REQUEST BODY</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RESPONSE HEADERS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RESPONSE COOKIES</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 more</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RESPONSE CACHE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Note</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Method</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Duration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%.3f seconds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>REQUEST</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BREAKPOINT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RESPONSE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ERROR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Description</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Domain</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Code</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file&apos;s path is invalid.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
