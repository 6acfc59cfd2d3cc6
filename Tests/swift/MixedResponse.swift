struct MixedResponse: Codable, Hashable {
    let items: [JSONValue]
}

enum JSONValue
