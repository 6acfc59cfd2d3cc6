struct ScalarResponse: Codable, Hashable {
    let value: String
}
