struct HostileApiResponse: Codable, Hashable {
    let x: Bool

    enum CodingKeys: String, CodingKey {
        case x = "`x`"
    }
}
struct HostileItem: Codable, Hashable {
    let y: Double
}
struct HostileResponse: Codable, Hashable {
    let value: Double
    let value31m: Double
    let value: Double
    let value: HostileApiResponse
    let x: HostileItem
    let evil: Double
    let value: Double
    let aFatalError: Double
    let a: Double
    let b: Double
    let value: Double

    enum CodingKeys: String, CodingKey {
        case value = "\0"
        case value31m = "\u{1B}[31m"
        case value = "\"\"\""
        case value = "*/ /*"
        case x = "[x]"
        case evil = "\\(evil())"
        case value = "`"
        case aFatalError = "a\"\n}\nfatalError()//"
        case a = "a\\"
        case b = "b\r\t"
        case value = "\u{2028}\u{202E}\u{FEFF}"
    }
}
